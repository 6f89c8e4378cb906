# Hardening and reproducibility of every binary the project builds: the shipped product, the
# simulated laptop and the tests alike, so that what is tested is what ships. One place for
# every flag; tests/release/binary-check.py checks the shipped result.
#
# - Stack protection: -fstack-protector-strong puts a guard value below the locals of every
#   function with a local array or an address-taken local, and calls __stack_chk_fail when a
#   write has run over it. MinGW-w64 keeps the guard and the failure routine in GCC's libssp,
#   which the driver links on its own once the flag is on the link line; -static (the
#   toolchains) takes libssp.a, so no libssp-0.dll is needed beside the binaries.
# - _FORTIFY_SOURCE=2: the MinGW-w64 headers turn memcpy, strcpy, sprintf and the like into
#   their checked forms (__memcpy_chk, ... in libssp) where the destination's size is known
#   at compile time. It needs optimisation, which every build type but Debug has.
# - ASLR with a 64-bit address space (dynamic base, high-entropy VA) and DEP (NX), named
#   explicitly although both linkers set them today, so that a linker's changed default
#   cannot drop them unnoticed.
# - Control Flow Guard, Clang only: -mguard=cf makes every indirect call go through the
#   loader's check and LLD writes the table of valid call targets into the load
#   configuration. The MinGW-w64 runtime of Debian 12 (10.0) has neither the load
#   configuration nor the check pointers the instrumented code calls through (they came with
#   MinGW-w64 11), so GuardCfLoadConfig.c beside this file supplies them. GCC 12 has no
#   Control Flow Guard.
# - Reproducible output: the source and build folders are mapped to fixed names in debug
#   information and __FILE__, and the PE time stamp is left 0, so that two builds of one
#   commit in two folders give byte-identical binaries (scripts/reproduce.sh).
if(MSVC)
  add_compile_options(/GS /guard:cf /Brepro)
  add_link_options(/DYNAMICBASE /HIGHENTROPYVA /NXCOMPAT /GUARD:CF /Brepro)
  return()
endif()

add_compile_options(-fstack-protector-strong)
add_compile_definitions(_FORTIFY_SOURCE=2)
# The build folder maps to ./build whatever its name or place (build-clang/, or a tree outside
# the sources), so that debug information names the same paths in every build.
add_compile_options(-ffile-prefix-map=${CMAKE_SOURCE_DIR}=. -ffile-prefix-map=${CMAKE_BINARY_DIR}=./build)
add_link_options(-fstack-protector-strong -Wl,--dynamicbase -Wl,--high-entropy-va -Wl,--nxcompat
                 -Wl,--no-insert-timestamp)

if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  set(LUMAVEN_CONTROL_FLOW_GUARD ON)
  add_compile_options(-mguard=cf)
  add_link_options(-mguard=cf)
  add_library(lumaven_guard_cf STATIC ${CMAKE_CURRENT_LIST_DIR}/GuardCfLoadConfig.c)
  # Every binary linked from here on takes the load configuration; LLD pulls it in through
  # the check pointers that the instrumented code refers to.
  link_libraries(lumaven_guard_cf)
else()
  set(LUMAVEN_CONTROL_FLOW_GUARD OFF)
endif()
