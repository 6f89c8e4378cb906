# The project's own targets build warning-free with these flags.
function(lumaven_warnings target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 /permissive- /utf-8)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra)
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
