# Cross build for 64-bit Windows with the MinGW-w64 GCC (posix thread model, which
# std::mutex and std::condition_variable need). Test binaries run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(LUMAVEN_MINGW_PREFIX x86_64-w64-mingw32)
set(CMAKE_C_COMPILER   ${LUMAVEN_MINGW_PREFIX}-gcc-posix)
set(CMAKE_CXX_COMPILER ${LUMAVEN_MINGW_PREFIX}-g++-posix)
set(CMAKE_RC_COMPILER  ${LUMAVEN_MINGW_PREFIX}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${LUMAVEN_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# libgcc, libstdc++ and winpthread go into every module, so the DLLs and EXEs run on
# a bare Windows without the MinGW runtime DLLs beside them.
set(CMAKE_EXE_LINKER_FLAGS_INIT    "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run.sh)
