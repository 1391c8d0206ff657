# What CPack makes Debian packages from, one of each component. scripts/package calls it.
set(debian ${PROJECT_SOURCE_DIR}/packaging/debian)

file(STRINGS ${debian}/changelog newest LIMIT_COUNT 1)
string(REGEX MATCH "\\((.+)-(.+)\\)" version "${newest}")
if(NOT CMAKE_MATCH_1 STREQUAL PROJECT_VERSION)
    message(FATAL_ERROR "${debian}/changelog begins with ${newest}, not with ${PROJECT_VERSION}")
endif()
set(CPACK_DEBIAN_PACKAGE_RELEASE ${CMAKE_MATCH_2})

set(CPACK_PACKAGE_NAME inkorakit)
set(CPACK_PACKAGE_CONTACT "The InkoraKit authors <maintainers@inkorakit.example>")
set(CPACK_DEBIAN_PACKAGE_SOURCE inkorakit)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_INKORA_BUILD ${PROJECT_BINARY_DIR})  # for this one:
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/FinishDebianPackages.cmake)

# package COMPONENT NAME SECTION MULTIARCH DESCRIPTION: as in Debian's control files, with its copyright
# and changes installed for packages alone.
set(CPACK_COMPONENTS_ALL "")
macro(package component name section multiarch description)
    string(TOUPPER ${component} key)
    list(APPEND CPACK_COMPONENTS_ALL ${component})
    set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${name})
    set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section})
    # CPack before 3.31 has no variable for Multi-Arch; this writes two lines.
    set(CPACK_DEBIAN_${key}_PACKAGE_PRIORITY "optional\nMulti-Arch: ${multiarch}")
    set(CPACK_DEBIAN_${key}_DESCRIPTION "${description}")

    set(folder ${CMAKE_INSTALL_DATADIR}/doc/${name})
    install(FILES ${debian}/copyright DESTINATION ${folder}
        COMPONENT ${component} EXCLUDE_FROM_ALL)
    install(FILES ${debian}/changelog DESTINATION ${folder} RENAME changelog.Debian
        COMPONENT ${component} EXCLUDE_FROM_ALL)
    install(FILES CHANGELOG.md DESTINATION ${folder} RENAME changelog
        COMPONENT ${component} EXCLUDE_FROM_ALL)
endmacro()

set(about
"InkoraKit finds a hand-held colour-capturing pen over Bluetooth LE, connects to
it, and reports every colour as it is captured, its battery level and its
signal strength.
.
")

package(InkoraLibrary libinkorakit${PROJECT_VERSION_MAJOR} libs same
"talks to a colour-capturing pen over Bluetooth LE (library)
${about}This package has the shared library.")
set(CPACK_DEBIAN_INKORALIBRARY_PACKAGE_SUGGESTS bluez)
file(WRITE ${PROJECT_BINARY_DIR}/shlibs
    "libInkoraKit ${PROJECT_VERSION_MAJOR} libinkorakit${PROJECT_VERSION_MAJOR} (>= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_INKORALIBRARY_PACKAGE_CONTROL_EXTRA
    ${PROJECT_BINARY_DIR}/shlibs ${debian}/libinkorakit1/triggers)

package(InkoraDevelopment libinkorakit-dev libdevel same
"talks to a colour-capturing pen over Bluetooth LE (development)
${about}This package has what hosts in C++ and C are built with: the headers, the
static library, the files for CMake and pkg-config, guides and examples.")
set(CPACK_DEBIAN_INKORADEVELOPMENT_PACKAGE_DEPENDS
    "libinkorakit${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}), libsystemd-dev")
set(CPACK_DEBIAN_INKORADEVELOPMENT_PACKAGE_SUGGESTS "cmake, pkgconf")

package(InkoraTool inkora utils foreign
"shows what a colour-capturing pen tells over Bluetooth LE
${about}This package has the command-line program, which shows colours in a terminal or
prints them as JSON, and reads and changes JSON documents.")
set(CPACK_DEBIAN_INKORATOOL_PACKAGE_RECOMMENDS bluez)

package(InkoraPython python3-inkorakit python no
"talks to a colour-capturing pen over Bluetooth LE (Python 3)
${about}This package has the Python package inkorakit, for asyncio and for callbacks.")
set(CPACK_DEBIAN_INKORAPYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_INKORAPYTHON_PACKAGE_DEPENDS
    "libinkorakit${PROJECT_VERSION_MAJOR} (>= ${PROJECT_VERSION}), python3:any (>= 3.10)")
set(CPACK_DEBIAN_INKORAPYTHON_PACKAGE_SUGGESTS bluez)
set(CPACK_DEBIAN_INKORAPYTHON_PACKAGE_CONTROL_EXTRA
    ${debian}/python3-inkorakit/postinst ${debian}/python3-inkorakit/prerm)

# Guides and examples, laid out as here, so that the links among them lead somewhere.
set(folder ${CMAKE_INSTALL_DATADIR}/doc/libinkorakit-dev)
install(FILES README.md DESTINATION ${folder} COMPONENT InkoraDevelopment EXCLUDE_FROM_ALL)
install(DIRECTORY docs examples DESTINATION ${folder} COMPONENT InkoraDevelopment EXCLUDE_FROM_ALL
    PATTERN docs/man EXCLUDE PATTERN docs/site EXCLUDE PATTERN CMakeLists.txt EXCLUDE)
set(folder ${CMAKE_INSTALL_DATADIR}/doc/python3-inkorakit)
install(FILES docs/python.md DESTINATION ${folder} COMPONENT InkoraPython EXCLUDE_FROM_ALL)
install(DIRECTORY bindings/python/examples
    DESTINATION ${folder} COMPONENT InkoraPython EXCLUDE_FROM_ALL)

include(CPack)
