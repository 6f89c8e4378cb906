# The project's own targets build warning-free with these flags, under every compiler.
# CI (scripts/test.sh) turns warnings into errors; a developer's build keeps them warnings.
option(LUMAVEN_WARNINGS_AS_ERRORS "Fail the build on any compiler warning in the project's own code" OFF)

set(LUMAVEN_CLANG_WARNINGS -Wimplicit-fallthrough -Wshadow -Wloop-analysis -Wrange-loop-analysis -Wcomma
    -Wextra-semi -Wunreachable-code)

function(lumaven_warnings target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8)
    if(LUMAVEN_WARNINGS_AS_ERRORS)
      target_compile_options(${target} PRIVATE /WX)
    endif()
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
      # Clang's additions beyond -Wall -Wextra that find real mistakes here: a variable or
      # member shadowing another, a loop whose condition its body never changes, a copy or
      # a conversion in a range-for, a misused comma, and a semicolon where none belongs.
      target_compile_options(${target} PRIVATE ${LUMAVEN_CLANG_WARNINGS})
    endif()
    if(LUMAVEN_WARNINGS_AS_ERRORS)
      target_compile_options(${target} PRIVATE -Werror)
    endif()
  endif()
  target_compile_definitions(${target} PRIVATE UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX
                                               _WIN32_WINNT=0x0A00)
endfunction()

# Windows programs with a wide entry point (wmain).
function(lumaven_wide_main target)
  if(NOT MSVC)
    target_link_options(${target} PRIVATE -municode)
  endif()
endfunction()
