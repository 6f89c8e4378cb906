# Every shipped binary carries a VERSIONINFO resource with the project's one version (from
# project(VERSION)), so Windows' file properties and installers see which release it is.
# One template serves all binaries; only the description and the file name differ.
set(LUMAVEN_VERSION_RC_TEMPLATE ${CMAKE_CURRENT_LIST_DIR}/version.rc.in)

function(lumaven_version_resource target description)
  get_target_property(type ${target} TYPE)
  if(type STREQUAL "EXECUTABLE")
    set(LUMAVEN_RC_FILETYPE 0x1)  # VFT_APP
  else()
    set(LUMAVEN_RC_FILETYPE 0x2)  # VFT_DLL
  endif()
  set(LUMAVEN_RC_TARGET ${target})
  set(LUMAVEN_RC_DESCRIPTION "${description}")
  get_target_property(LUMAVEN_RC_INTERNAL_NAME ${target} OUTPUT_NAME)
  if(NOT LUMAVEN_RC_INTERNAL_NAME)
    set(LUMAVEN_RC_INTERNAL_NAME ${target})
  endif()
  file(READ ${LUMAVEN_VERSION_RC_TEMPLATE} template)
  string(CONFIGURE "${template}" configured @ONLY)
  # The file name comes from the target itself at generation time.
  set(output ${CMAKE_CURRENT_BINARY_DIR}/${target}.version.rc)
  file(GENERATE OUTPUT ${output} CONTENT "${configured}")
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${LUMAVEN_VERSION_RC_TEMPLATE})
  target_sources(${target} PRIVATE ${output})
endfunction()
