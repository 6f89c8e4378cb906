# The release package: the install tree as Lumaven-<version>-win64.zip, with a SHA-256 sum
# file beside it. `scripts/package.sh` builds and runs it; `cpack --config
# build/CPackConfig.cmake` does the same on a built tree.
set(CPACK_PACKAGE_NAME Lumaven)
set(CPACK_PACKAGE_VENDOR "Lumaven project")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Lumaven display power service for the Xelto host")
set(CPACK_SYSTEM_NAME win64)
set(CPACK_PACKAGE_FILE_NAME ${CPACK_PACKAGE_NAME}-${CPACK_PACKAGE_VERSION}-${CPACK_SYSTEM_NAME})
set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/package)
# One archive with every component; the folders keep the product and the simulator apart.
set(CPACK_ARCHIVE_COMPONENT_INSTALL OFF)
include(CPack)
