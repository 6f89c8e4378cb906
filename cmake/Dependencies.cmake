# RapidJSON is header-only; the cross build uses the Debian copy of the headers.
# Only the rapidjson folder is exposed: putting the host's /usr/include on the cross
# compiler's path would mix Linux C headers into the Windows build.
# On Windows, point RAPIDJSON_INCLUDE_DIR at a folder holding rapidjson/.
find_path(RAPIDJSON_INCLUDE_DIR rapidjson/document.h
          PATHS /usr/include $ENV{RAPIDJSON_INCLUDE} NO_CMAKE_FIND_ROOT_PATH REQUIRED)
set(LUMAVEN_RAPIDJSON_DIR ${CMAKE_BINARY_DIR}/third_party/include)
# A copy of the headers with one fix: RapidJSON 1.1.0's GenericStringRef declares a copy
# assignment that assigns its const members. No call can compile, and GCC lets the unused
# body pass, but Clang 19 and later reject the header. The copy leaves the declaration out,
# which changes nothing: with const members the assignment is deleted anyway.
set(rapidjson_copy ${LUMAVEN_RAPIDJSON_DIR}/rapidjson)
if(IS_SYMLINK ${rapidjson_copy})
  file(REMOVE ${rapidjson_copy})  # a link to the system headers, made by an earlier version
endif()
file(COPY ${RAPIDJSON_INCLUDE_DIR}/rapidjson DESTINATION ${LUMAVEN_RAPIDJSON_DIR} PATTERN document.h EXCLUDE)
file(READ ${RAPIDJSON_INCLUDE_DIR}/rapidjson/document.h document)
string(REPLACE "    GenericStringRef& operator=(const GenericStringRef& rhs) { s = rhs.s; length = rhs.length; }\n"
               "" document "${document}")
file(WRITE ${CMAKE_BINARY_DIR}/third_party/document.h "${document}")
file(COPY_FILE ${CMAKE_BINARY_DIR}/third_party/document.h ${rapidjson_copy}/document.h ONLY_IF_DIFFERENT)
add_library(rapidjson INTERFACE)
target_include_directories(rapidjson SYSTEM INTERFACE ${LUMAVEN_RAPIDJSON_DIR})
# Every inclusion goes through third_party/LumavenRapidJson.h, which sets the project's policy
# for the library's assertions and allocation failures.
target_include_directories(rapidjson INTERFACE ${PROJECT_SOURCE_DIR}/third_party)

option(LUMAVEN_BUILD_TESTS "Build the GoogleTest suites" ON)
set(LUMAVEN_GTEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest sources to cross-compile")
if(LUMAVEN_BUILD_TESTS)
  set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
  add_subdirectory(${LUMAVEN_GTEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
endif()
