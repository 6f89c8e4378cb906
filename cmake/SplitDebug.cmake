# Run by `cmake --install` on every installed binary: the shipped file is stripped and its
# debug information travels beside it as a separate file, so a crash dump from the field can
# still be read.
#
# GCC writes DWARF into the binary: it is copied into FILE.debug, the binary is stripped of
# all symbols and debug sections, and a GNU debuglink (file name and CRC) lets GDB find the
# debug file again. A build that wrote a PDB beside its binary (Clang with LLD --pdb, or MSVC)
# has no DWARF to move: the PDB is installed beside the binary, which is left as linked so
# that its CodeView record still matches the PDB.
#
# `keep` false: the binary is stripped and its debug information is not installed (the
# simulated laptop's tools, whose debug information would triple the package's size).
# objcopy writes a new PE header whose time stamp is the current time, or SOURCE_DATE_EPOCH
# when set: 0 here, as the linkers leave it (Hardening.cmake), so that a stripped binary is the
# same bytes whenever and wherever it is installed.
function(lumaven_objcopy objcopy directory)
  execute_process(COMMAND "${CMAKE_COMMAND}" -E env SOURCE_DATE_EPOCH=0 "${objcopy}" ${ARGN}
                  WORKING_DIRECTORY "${directory}" RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "${objcopy} ${ARGN} failed in ${directory}")
  endif()
endfunction()

function(lumaven_split_debug installed built objcopy keep)
  get_filename_component(directory "${installed}" DIRECTORY)
  get_filename_component(name "${installed}" NAME)
  get_filename_component(built_directory "${built}" DIRECTORY)
  get_filename_component(built_stem "${built}" NAME_WLE)
  set(pdb "${built_directory}/${built_stem}.pdb")
  if(EXISTS "${pdb}")
    if(keep)
      file(INSTALL DESTINATION "${directory}" TYPE FILE FILES "${pdb}")
    endif()
    return()
  endif()
  if(NOT objcopy)
    message(FATAL_ERROR "no objcopy to split the debug information of ${name}")
  endif()
  # Run in the binary's folder: the debuglink records the debug file's name, not its path.
  if(keep)
    lumaven_objcopy("${objcopy}" "${directory}" --only-keep-debug "${name}" "${name}.debug")
    lumaven_objcopy("${objcopy}" "${directory}" --strip-all "--add-gnu-debuglink=${name}.debug" "${name}")
    message(STATUS "Stripped: ${installed} (debug information in ${name}.debug)")
  else()
    lumaven_objcopy("${objcopy}" "${directory}" --strip-all "${name}")
    message(STATUS "Stripped: ${installed}")
  endif()
endfunction()
