# Cross build for 64-bit Windows with Debian's Clang and LLD, on the same MinGW-w64 headers,
# libstdc++ (posix thread model), libgcc and winpthread as the GCC build
# (toolchain-mingw64.cmake), so that modules built by the two compilers share one C++ runtime
# and may be mixed. Every fact about that runtime that needs a flag is kept in this file.
# Test binaries run under Wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(LUMAVEN_MINGW_PREFIX x86_64-w64-mingw32)
# The Clang version is part of the program names (Debian installs clang-NN side by side).
set(LUMAVEN_CLANG_VERSION 22 CACHE STRING "Version suffix of Debian's clang-NN and lld-NN")
set(CMAKE_C_COMPILER   clang-${LUMAVEN_CLANG_VERSION})
set(CMAKE_CXX_COMPILER clang++-${LUMAVEN_CLANG_VERSION})
set(CMAKE_C_COMPILER_TARGET   ${LUMAVEN_MINGW_PREFIX})
set(CMAKE_CXX_COMPILER_TARGET ${LUMAVEN_MINGW_PREFIX})
# The resource compiler, archiver and objcopy are MinGW's binutils, as for GCC.
set(CMAKE_RC_COMPILER ${LUMAVEN_MINGW_PREFIX}-windres)
set(CMAKE_AR          ${LUMAVEN_MINGW_PREFIX}-ar)
set(CMAKE_RANLIB      ${LUMAVEN_MINGW_PREFIX}-ranlib)
set(CMAKE_OBJCOPY     ${LUMAVEN_MINGW_PREFIX}-objcopy)

set(CMAKE_FIND_ROOT_PATH /usr/${LUMAVEN_MINGW_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The C++ runtime is the posix MinGW GCC's, asked from that GCC so that no version is written
# down here: its libstdc++ include folders and the folder of its libgcc and libstdc++. Clang
# would pick a MinGW GCC installation on its own, but where the win32 thread model's is
# installed too it could take that one, whose libstdc++ has no std::mutex and a different ABI.
set(LUMAVEN_MINGW_GXX ${LUMAVEN_MINGW_PREFIX}-g++-posix)
execute_process(COMMAND ${LUMAVEN_MINGW_GXX} -E -x c++ -v /dev/null
                OUTPUT_QUIET ERROR_VARIABLE search RESULT_VARIABLE failed)
execute_process(COMMAND ${LUMAVEN_MINGW_GXX} -print-libgcc-file-name
                OUTPUT_VARIABLE libgcc OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE failed_libgcc)
if(failed OR failed_libgcc)
  message(FATAL_ERROR "${LUMAVEN_MINGW_GXX} is needed for its libstdc++ (Debian package g++-mingw-w64-x86-64-posix)")
endif()
string(REGEX MATCHALL "\n [^\n]*/include/c\\+\\+[^\n]*" stdlib_dirs "${search}")
if(NOT stdlib_dirs)
  message(FATAL_ERROR "${LUMAVEN_MINGW_GXX} names no libstdc++ include folder")
endif()
set(stdlib_flags "")
foreach(dir IN LISTS stdlib_dirs)
  string(STRIP "${dir}" dir)
  string(APPEND stdlib_flags " -stdlib++-isystem ${dir}")
endforeach()
get_filename_component(LUMAVEN_MINGW_GCC_LIB_DIR ${libgcc} DIRECTORY)

# CodeView debug information, which Windows debuggers read, in a PDB beside every DLL and EXE
# (--pdb= names it after the module; -g itself comes from the build type). The module records
# the PDB by file name only (pdbaltpath), so no build machine path is shipped and a debugger
# looks beside the module. -s leaves out of the module the DWARF that the MinGW runtime
# libraries bring and the symbol table: everything a debugger needs is in the PDB, and the
# module is stripped as linked.
set(CMAKE_C_FLAGS_INIT   "-gcodeview")
set(CMAKE_CXX_FLAGS_INIT "-gcodeview${stdlib_flags}")
set(LUMAVEN_WRITES_PDB ON)

# libgcc, libstdc++ and winpthread go into every module, so the DLLs and EXEs run on a bare
# Windows without the MinGW runtime DLLs beside them. -pthread links winpthread, which the
# posix libstdc++ calls (GCC's posix driver adds it by itself).
set(link_flags "-fuse-ld=lld -static -pthread -L${LUMAVEN_MINGW_GCC_LIB_DIR}")
string(APPEND link_flags " -Wl,--pdb= -Wl,-Xlink=-pdbaltpath:%_PDB% -Wl,-s")
set(CMAKE_EXE_LINKER_FLAGS_INIT    "${link_flags}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${link_flags}")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${link_flags}")

# LLD's MinGW driver has no --push-state/--pop-state, which CMake would wrap around a whole
# archive after asking the host's linker (GNU ld) whether it knows them.
set(_CMAKE_LINKER_PUSHPOP_STATE_SUPPORTED FALSE CACHE INTERNAL "LLD's MinGW driver has no --push-state")

set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/wine-run.sh)
