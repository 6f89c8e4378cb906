# RapidJSON is header-only; the cross build uses the Debian copy of the headers.
# Only the rapidjson folder is exposed: putting the host's /usr/include on the cross
# compiler's path would mix Linux C headers into the Windows build.
# On Windows, point RAPIDJSON_INCLUDE_DIR at a folder holding rapidjson/.
find_path(RAPIDJSON_INCLUDE_DIR rapidjson/document.h
          PATHS /usr/include $ENV{RAPIDJSON_INCLUDE} NO_CMAKE_FIND_ROOT_PATH REQUIRED)
set(LUMAVEN_RAPIDJSON_DIR ${CMAKE_BINARY_DIR}/third_party/include)
file(MAKE_DIRECTORY ${LUMAVEN_RAPIDJSON_DIR})
file(CREATE_LINK ${RAPIDJSON_INCLUDE_DIR}/rapidjson ${LUMAVEN_RAPIDJSON_DIR}/rapidjson COPY_ON_ERROR SYMBOLIC)
add_library(rapidjson INTERFACE)
target_include_directories(rapidjson SYSTEM INTERFACE ${LUMAVEN_RAPIDJSON_DIR})

option(LUMAVEN_BUILD_TESTS "Build the GoogleTest suites" ON)
set(LUMAVEN_GTEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest sources to cross-compile")
if(LUMAVEN_BUILD_TESTS)
  set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
  set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
  set(gtest_force_shared_crt ON CACHE BOOL "" FORCE)
  add_subdirectory(${LUMAVEN_GTEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
endif()
