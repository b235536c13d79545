# The port installs the unpacked package around this file. It downloads and builds nothing.
get_filename_component(package "${CURRENT_PORT_DIR}/../../.." ABSOLUTE)

# Debug builds of a host use the same build of the library.
set(VCPKG_POLICY_MISMATCHED_NUMBER_OF_BINARIES enabled)

file(INSTALL "${package}/include/bridge" DESTINATION "${CURRENT_PACKAGES_DIR}/include")
file(INSTALL "${package}/bin/QX-Bridge.dll" "${package}/bin/QX-Bridge.pdb"
             "${package}/bin/Qt5Core.dll" "${package}/bin/Qt5Network.dll"
     DESTINATION "${CURRENT_PACKAGES_DIR}/bin")
file(INSTALL "${package}/lib/QX-Bridge.lib" "${package}/lib/QX-Bridge.dll.a"
     DESTINATION "${CURRENT_PACKAGES_DIR}/lib")
file(INSTALL "${package}/lib/cmake/QXBridge" DESTINATION "${CURRENT_PACKAGES_DIR}/share")
file(INSTALL "${CURRENT_PORT_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
file(INSTALL "${package}/share/licences/" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}/licences")
file(INSTALL "${package}/share/licences/README.md"
     DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}" RENAME copyright)
