# Every test binary runs under Wine in one private prefix per build tree. A fixture makes
# the prefix once; tests share its registry and system32, so they hold one resource lock
# and never run at the same time. A native Windows build has no prefix: its tests run as
# they are (and the simulated laptop's installer refuses to touch a real Windows).
set(LUMAVEN_WINEPREFIX ${CMAKE_BINARY_DIR}/wineprefix)

if(CMAKE_CROSSCOMPILING_EMULATOR)
  add_test(NAME wineprefix COMMAND ${CMAKE_SOURCE_DIR}/cmake/make-wineprefix.sh ${LUMAVEN_WINEPREFIX})
  set_tests_properties(wineprefix PROPERTIES FIXTURES_SETUP wineprefix TIMEOUT 300)
endif()

# Under Wine a crashed test program can still exit with code 0, so a GoogleTest program
# passes only on GoogleTest's own report (cmake/gtest-run.sh); natively the exit code holds.
function(lumaven_add_wine_test name target)
  if(CMAKE_CROSSCOMPILING_EMULATOR)
    add_test(NAME ${name} COMMAND ${CMAKE_SOURCE_DIR}/cmake/gtest-run.sh $<TARGET_FILE:${target}> ${ARGN}
             WORKING_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
  else()
    add_test(NAME ${name} COMMAND ${target} ${ARGN} WORKING_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
  endif()
  lumaven_wine_test_properties(${name})
endfunction()

function(lumaven_wine_test_properties name)
  set_tests_properties(${name} PROPERTIES
    FIXTURES_REQUIRED wineprefix
    RESOURCE_LOCK wineprefix
    TIMEOUT 900
    ENVIRONMENT "WINEPREFIX=${LUMAVEN_WINEPREFIX};WINEDEBUG=-all")
endfunction()

# One GoogleTest program, run as the suite of the same name: built warning-free from SOURCES,
# linked with LIBRARIES and GoogleTest's main, built after DEPENDS (the DLLs and programs its
# tests load or start).
function(lumaven_test_suite name)
  cmake_parse_arguments(PARSE_ARGV 1 suite "" "" "SOURCES;LIBRARIES;INCLUDES;DEPENDS")
  add_executable(${name} ${suite_SOURCES})
  target_link_libraries(${name} PRIVATE ${suite_LIBRARIES} GTest::gtest_main)
  if(suite_INCLUDES)
    target_include_directories(${name} PRIVATE ${suite_INCLUDES})
  endif()
  lumaven_warnings(${name})
  add_dependencies(${name} ${suite_DEPENDS})
  lumaven_add_wine_test(${name} ${name})
endfunction()
