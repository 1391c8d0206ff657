# What `cmake --install` puts where: the libraries, the headers, and what find_package and pkg-config
# look for. The tool and the Python package have their rules in their folders. The components are
# InkoraLibrary, InkoraDevelopment (what hosts are built with), InkoraTool and InkoraPython.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/InkoraKit)
set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

if(NOT EMSCRIPTEN)  # what only pages have
    set(others PATTERN web EXCLUDE)
endif()
install(DIRECTORY include/InkoraKit DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT InkoraDevelopment
    ${others})
# An export each: the static library needs what the radio is linked with, the shared one does not.
if(InkoraKit IN_LIST INKORA_LIBRARIES)
    install(TARGETS InkoraKit EXPORT InkoraKitTargets
        RUNTIME COMPONENT InkoraLibrary
        LIBRARY COMPONENT InkoraLibrary NAMELINK_COMPONENT InkoraDevelopment
        ARCHIVE COMPONENT InkoraDevelopment)
endif()
if(InkoraKitStatic IN_LIST INKORA_LIBRARIES)
    install(TARGETS InkoraKitStatic EXPORT InkoraKitStaticTargets ARCHIVE COMPONENT InkoraDevelopment)
endif()
foreach(library IN LISTS INKORA_LIBRARIES)
    install(EXPORT ${library}Targets NAMESPACE InkoraKit:: DESTINATION ${package_dir}
        COMPONENT InkoraDevelopment)
endforeach()

configure_package_config_file(cmake/InkoraKitConfig.cmake.in
    ${PROJECT_BINARY_DIR}/InkoraKitConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/InkoraKitConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/InkoraKitConfig.cmake
    ${PROJECT_BINARY_DIR}/InkoraKitConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT InkoraDevelopment)

function(install_pkgconfig_file)
    # Relative, so that `cmake --install --prefix` may put it anywhere, but for what is absolute.
    if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
        set(prefix ${CMAKE_INSTALL_PREFIX})
    else()
        file(RELATIVE_PATH up /${pkgconfig_dir} /)
        string(REGEX REPLACE "/$" "" prefix "\${pcfiledir}/${up}")
    endif()
    set(includedir "\${prefix}")
    cmake_path(APPEND includedir "${CMAKE_INSTALL_INCLUDEDIR}")
    set(libdir "\${prefix}")
    cmake_path(APPEND libdir "${CMAKE_INSTALL_LIBDIR}")

    # What the static library needs: the C++ library is for hosts in C. Where there is no other, it is
    # needed without `pkg-config --static` as well.
    set(when statically)
    if(NOT InkoraKit IN_LIST INKORA_LIBRARIES)
        set(when always)
    endif()
    if(InkoraKitStatic IN_LIST INKORA_LIBRARIES)
        set(${when}_defined " -DINKORA_STATIC")
        set(${when}_linked " -lstdc++ -lm")
        if(UNIX AND NOT APPLE AND NOT EMSCRIPTEN)
            string(APPEND ${when}_linked " -Wl,--exclude-libs,libInkoraKit.a")
        endif()
        if(INKORA_HAS_BLUEZ)
            set(${when}_required " libsystemd")
        endif()
    endif()
    configure_file(cmake/inkorakit.pc.in ${PROJECT_BINARY_DIR}/inkorakit.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/inkorakit.pc DESTINATION ${pkgconfig_dir}
        COMPONENT InkoraDevelopment)
endfunction()
install_pkgconfig_file()
