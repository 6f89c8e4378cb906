# Module-definition files whose ctl* export lists come from the one table of Intel control
# library entry points (src/intel/ControlLibFunctions.h), so that no list of the 93 names is
# kept by hand anywhere else. The table's entry lines start with LOADER( or FORWARDED(.
set(LUMAVEN_CTL_TABLE ${CMAKE_CURRENT_LIST_DIR}/../src/intel/ControlLibFunctions.h)
get_filename_component(LUMAVEN_CTL_TABLE ${LUMAVEN_CTL_TABLE} ABSOLUTE)

# The entry names in table order.
function(lumaven_ctl_names out_var)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${LUMAVEN_CTL_TABLE})
  # Read whole: the entry lines end in backslashes, which would escape a list separator.
  file(READ ${LUMAVEN_CTL_TABLE} table)
  string(REGEX MATCHALL "\n[ \t]*(LOADER|FORWARDED)\\(ctl[A-Za-z0-9_]+[,)]" entries "${table}")
  set(names)
  foreach(entry IN LISTS entries)
    string(REGEX REPLACE "^.*\\((ctl[A-Za-z0-9_]+).*$" "\\1" name "${entry}")
    list(APPEND names ${name})
  endforeach()
  list(LENGTH names count)
  if(NOT count EQUAL 93)
    message(FATAL_ERROR "${LUMAVEN_CTL_TABLE}: expected 93 entry lines, found ${count}")
  endif()
  set(${out_var} ${names} PARENT_SCOPE)
endfunction()

# lumaven_ctl_def(OUTPUT file (TEMPLATE file | LIBRARY name) [ONLY names...] [WITHOUT names...])
# With TEMPLATE, @LUMAVEN_CTL_EXPORTS@ in the template becomes the export lines; otherwise the
# file holds the LIBRARY line and the exports alone. ONLY keeps just the names given, WITHOUT
# drops them; both must name table entries.
function(lumaven_ctl_def)
  cmake_parse_arguments(DEF "" "OUTPUT;TEMPLATE;LIBRARY" "ONLY;WITHOUT" ${ARGN})
  lumaven_ctl_names(names)
  foreach(name IN LISTS DEF_ONLY DEF_WITHOUT)
    if(NOT name IN_LIST names)
      message(FATAL_ERROR "lumaven_ctl_def: ${name} is not in ${LUMAVEN_CTL_TABLE}")
    endif()
  endforeach()
  if(DEF_ONLY)
    set(names ${DEF_ONLY})
  endif()
  if(DEF_WITHOUT)
    list(REMOVE_ITEM names ${DEF_WITHOUT})
  endif()
  list(TRANSFORM names PREPEND "    ")
  list(JOIN names "\n" LUMAVEN_CTL_EXPORTS)
  if(DEF_TEMPLATE)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${DEF_TEMPLATE})
    configure_file(${DEF_TEMPLATE} ${DEF_OUTPUT} @ONLY)
  else()
    file(CONFIGURE OUTPUT ${DEF_OUTPUT} CONTENT "LIBRARY ${DEF_LIBRARY}\nEXPORTS\n${LUMAVEN_CTL_EXPORTS}\n" @ONLY)
  endif()
endfunction()
