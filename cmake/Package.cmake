# The release package: scripts/package.sh builds this tree and runs scripts/package.py on it,
# which installs it, signs its binaries when asked, adds the SBOM and zips it into
# package/Lumaven-<version>-win64.zip with a SHA-256 sum file beside it. What the packaging
# step needs to know of this build is written here, once per configure.
set(LUMAVEN_PACKAGE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-win64)
set(LUMAVEN_PACKAGE_INFO "{
  \"name\": \"${PROJECT_NAME}\",
  \"version\": \"${PROJECT_VERSION}\",
  \"package\": \"${LUMAVEN_PACKAGE_NAME}\",
  \"vendor\": \"Lumaven project\",
  \"system\": \"Windows x64\",
  \"compiler\": \"${CMAKE_CXX_COMPILER_ID} ${CMAKE_CXX_COMPILER_VERSION}\",
  \"source_dir\": \"${PROJECT_SOURCE_DIR}\",
  \"third_party\": \"${PROJECT_SOURCE_DIR}/cmake/ThirdParty.txt\"
}
")
file(CONFIGURE OUTPUT ${CMAKE_BINARY_DIR}/package-info.json CONTENT "${LUMAVEN_PACKAGE_INFO}")
