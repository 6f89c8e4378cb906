# `cmake --install` lays out what a host vendor takes:
#   bin/                  LumavenService.dll, XeltoLog.dll, xelto-host.exe, each stripped, with
#                         its debug information beside it (FILE.debug, or FILE's PDB)
#   include/xelto/        the host contract
#   share/lumaven/        the integration guide and the change log
#   share/lumaven/sim/    the simulated laptop, a development tool kept apart from the product:
#                         lumaven-sim.exe, the fake vendor libraries in fake-vendor-libraries/
#                         beside it (where the installer looks for them), the machine profiles
#                         and demo scripts; stripped, without their debug information
#   THIRD-PARTY-NOTICES.txt  every third-party component in the binaries, with its license
# Components: "product" (the first three and the notices) and "sim" (the simulated laptop).
install(CODE "include(\"${CMAKE_CURRENT_LIST_DIR}/SplitDebug.cmake\")" ALL_COMPONENTS)

set(LUMAVEN_SHARE_DIR share/lumaven)
set(LUMAVEN_SIM_INSTALL_DIR ${LUMAVEN_SHARE_DIR}/sim)
# The installer's name for it, beside lumaven-sim.exe (sim/installer/Installer.cpp).
set(LUMAVEN_FAKE_LIBRARY_INSTALL_DIR ${LUMAVEN_SIM_INSTALL_DIR}/fake-vendor-libraries)
# Each installed binary's link map, from which the test third_party_notices learns which
# third-party libraries went into it.
set(LUMAVEN_LINK_MAP_DIR ${CMAKE_BINARY_DIR}/link-maps)
file(MAKE_DIRECTORY ${LUMAVEN_LINK_MAP_DIR})

# `keep_debug`: install the debug information beside the binary (the product) or not (the
# simulated laptop, a development tool whose debug information stays in the build tree).
function(lumaven_install_binary target destination component keep_debug)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    # LLD's own -Map leaves out the archive of each member; link.exe's form names it.
    target_link_options(${target} PRIVATE "LINKER:-Xlink=-map:${LUMAVEN_LINK_MAP_DIR}/${target}.map")
  elseif(NOT MSVC)
    target_link_options(${target} PRIVATE "LINKER:-Map=${LUMAVEN_LINK_MAP_DIR}/${target}.map")
  endif()
  set_property(GLOBAL APPEND PROPERTY LUMAVEN_LINK_MAPS ${LUMAVEN_LINK_MAP_DIR}/${target}.map)
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
# Written at install time from the Debian packages of this machine, so that the versions and
# license texts are those of the libraries the binaries were linked with.
if(NOT MSVC)
  find_program(LUMAVEN_PYTHON python3 PATHS /usr/bin NO_DEFAULT_PATH REQUIRED)
  install(CODE "execute_process(COMMAND \"${LUMAVEN_PYTHON}\" \"${PROJECT_SOURCE_DIR}/scripts/third_party.py\" notices
                                        \"${PROJECT_SOURCE_DIR}/cmake/ThirdParty.txt\"
                                        \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/THIRD-PARTY-NOTICES.txt\" ${PROJECT_VERSION}
                                COMMAND_ERROR_IS_FATAL ANY)"
          COMPONENT product)
endif()

lumaven_install_binary(lumaven-sim ${LUMAVEN_SIM_INSTALL_DIR} sim FALSE)
# Every fake vendor library the sim/ folders define, whatever their number.
get_property(sim_folders DIRECTORY sim PROPERTY SUBDIRECTORIES)
foreach(folder ${sim_folders})
  get_property(folder_targets DIRECTORY ${folder} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target ${folder_targets})
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "SHARED_LIBRARY")
      lumaven_install_binary(${target} ${LUMAVEN_FAKE_LIBRARY_INSTALL_DIR} sim FALSE)
    endif()
  endforeach()
endforeach()
install(DIRECTORY sim/profiles sim/demo DESTINATION ${LUMAVEN_SIM_INSTALL_DIR} COMPONENT sim)
install(FILES sim/README.md sim/README-amd.md sim/README-gpu.md DESTINATION ${LUMAVEN_SIM_INSTALL_DIR}
        COMPONENT sim)
