# The contents of the package as install rules: `cmake --install build/windows --prefix FOLDER`.
# toolchain/package.sh adds the reference, licences and checksums, and makes the zip.
include(CMakePackageConfigHelpers)

install(TARGETS QX-Bridge RUNTIME DESTINATION bin ARCHIVE DESTINATION lib)
install(TARGETS bridgectl RUNTIME DESTINATION bin)
# In a separate folder, so that no host ships them by mistake or finds them instead of the product's programs.
install(TARGETS standin_player standin_manager RUNTIME DESTINATION tools)
install(FILES "$<TARGET_FILE_DIR:QX-Bridge>/QX-Bridge.pdb" DESTINATION bin)
foreach(module Core Network)
    get_target_property(dll Qt5::${module} IMPORTED_LOCATION_RELEASE)
    install(FILES "${dll}" DESTINATION bin)
endforeach()
if(NOT MSVC)
    install(FILES "${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/QX-Bridge.lib" DESTINATION lib)
endif()

install(DIRECTORY include/bridge DESTINATION include)

set(package_folder "${PROJECT_BINARY_DIR}/package-config")
configure_file(cmake/QXBridgeConfig.cmake.in "${package_folder}/QXBridgeConfig.cmake" @ONLY)
write_basic_package_version_file("${package_folder}/QXBridgeConfigVersion.cmake"
    VERSION "${PROJECT_VERSION}" COMPATIBILITY SameMajorVersion)
install(FILES "${package_folder}/QXBridgeConfig.cmake" "${package_folder}/QXBridgeConfigVersion.cmake"
    cmake/QXBridgeCopyRuntime.cmake
    DESTINATION lib/cmake/QXBridge)

configure_file(cmake/qx-bridge.pc.in "${package_folder}/qx-bridge.pc" @ONLY)
install(FILES "${package_folder}/qx-bridge.pc" DESTINATION lib/pkgconfig)

configure_file(cmake/vcpkg/qx-bridge/vcpkg.json.in "${package_folder}/vcpkg.json" @ONLY)
install(FILES "${package_folder}/vcpkg.json" cmake/vcpkg/qx-bridge/portfile.cmake
    cmake/vcpkg/qx-bridge/usage DESTINATION share/vcpkg/qx-bridge)

# The index, the pages for contributors and what belongs to them stay in the tree.
install(DIRECTORY docs/ DESTINATION share/doc FILES_MATCHING PATTERN "*.md" PATTERN "*.svg"
    PATTERN README.md EXCLUDE PATTERN package.md EXCLUDE PATTERN contributing EXCLUDE
    PATTERN "performance*" EXCLUDE)
install(FILES docs/package.md DESTINATION . RENAME README.md)
install(FILES CHANGELOG.md DESTINATION .)
foreach(folder examples bindings)
    if(IS_DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}")
        install(DIRECTORY ${folder}/ DESTINATION share/${folder} PATTERN node_modules EXCLUDE
            PATTERN __pycache__ EXCLUDE PATTERN package-lock.json EXCLUDE)
    endif()
endforeach()
install(FILES demo/vantrel.conf DESTINATION share/examples)
