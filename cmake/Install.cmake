# What `cmake --install` puts where: the headers, both libraries, the tool, and what find_package and
# pkg-config look for.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/InkoraKit)

install(DIRECTORY include/InkoraKit DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS InkoraKit EXPORT InkoraKitTargets)
# In a file of its own: it needs what the radio is linked with, the shared library does not.
install(TARGETS InkoraKitStatic EXPORT InkoraKitStaticTargets)
foreach(export IN ITEMS InkoraKitTargets InkoraKitStaticTargets)
    install(EXPORT ${export} NAMESPACE InkoraKit:: DESTINATION ${package_dir})
endforeach()
if(INKORA_TOOLS)
    install(TARGETS inkora)
    file(RELATIVE_PATH library_dir
        ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
    set_target_properties(inkora PROPERTIES INSTALL_RPATH "$ORIGIN/${library_dir}")
endif()

configure_package_config_file(cmake/InkoraKitConfig.cmake.in
    ${PROJECT_BINARY_DIR}/InkoraKitConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/InkoraKitConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/InkoraKitConfig.cmake
    ${PROJECT_BINARY_DIR}/InkoraKitConfigVersion.cmake DESTINATION ${package_dir})

# Relative, so that `cmake --install --prefix` may put it anywhere.
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig /${pkgconfig_dir} /)
if(INKORA_HAS_BLUEZ)
    set(static_libraries -lsystemd)
endif()
configure_file(cmake/inkorakit.pc.in ${PROJECT_BINARY_DIR}/inkorakit.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/inkorakit.pc DESTINATION ${pkgconfig_dir})
