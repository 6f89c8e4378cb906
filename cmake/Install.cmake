# `cmake --install` lays out what a host vendor takes:
#   bin/                  LumavenService.dll, XeltoLog.dll, xelto-host.exe, each stripped, with
#                         its debug information beside it (FILE.debug, or FILE's PDB)
#   include/xelto/        the host contract
#   share/lumaven/        the integration guide and the change log
#   share/lumaven/sim/    the simulated laptop, a development tool kept apart from the product:
#                         lumaven-sim.exe, the fake vendor libraries in sim/ beside it (where the
#                         installer looks for them), the machine profiles and demo scripts;
#                         stripped, without their debug information
# Components: "product" (the first three) and "sim" (the last).
install(CODE "include(\"${CMAKE_CURRENT_LIST_DIR}/SplitDebug.cmake\")" ALL_COMPONENTS)

set(LUMAVEN_SHARE_DIR share/lumaven)
set(LUMAVEN_SIM_INSTALL_DIR ${LUMAVEN_SHARE_DIR}/sim)

# `keep_debug`: install the debug information beside the binary (the product) or not (the
# simulated laptop, a development tool whose debug information stays in the build tree).
function(lumaven_install_binary target destination component keep_debug)
  install(TARGETS ${target} RUNTIME DESTINATION ${destination} LIBRARY DESTINATION ${destination}
          COMPONENT ${component})
  install(CODE "lumaven_split_debug(\"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${destination}/$<TARGET_FILE_NAME:${target}>\"
                                    \"$<TARGET_FILE:${target}>\" \"${CMAKE_OBJCOPY}\" ${keep_debug})"
          COMPONENT ${component})
endfunction()

foreach(target LumavenService xelto_log xelto-host)
  lumaven_install_binary(${target} bin product TRUE)
endforeach()
install(DIRECTORY include/xelto DESTINATION include COMPONENT product)
install(FILES docs/integration.md CHANGELOG.md DESTINATION ${LUMAVEN_SHARE_DIR} COMPONENT product)

lumaven_install_binary(lumaven-sim ${LUMAVEN_SIM_INSTALL_DIR} sim FALSE)
# Every fake vendor library the sim/ folders define, whatever their number.
get_property(sim_folders DIRECTORY sim PROPERTY SUBDIRECTORIES)
foreach(folder ${sim_folders})
  get_property(folder_targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target ${folder_targets})
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "SHARED_LIBRARY")
      lumaven_install_binary(${target} ${LUMAVEN_SIM_INSTALL_DIR}/sim sim FALSE)
    endif()
  endforeach()
endforeach()
install(DIRECTORY sim/profiles sim/demo DESTINATION ${LUMAVEN_SIM_INSTALL_DIR} COMPONENT sim)
install(FILES sim/README.md sim/README-amd.md sim/README-gpu.md DESTINATION ${LUMAVEN_SIM_INSTALL_DIR}
        COMPONENT sim)
