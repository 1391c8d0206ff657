# Run by CPack when each component is installed in a folder of its own, and before they are packed.
set(folder ${CPACK_TEMPORARY_DIRECTORY})

function(run)
    execute_process(COMMAND ${ARGV} WORKING_DIRECTORY ${folder} OUTPUT_VARIABLE output
        COMMAND_ERROR_IS_FATAL ANY)
    set(output "${output}" PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE texts ${folder}/*/usr/share/man/* ${folder}/*/usr/share/doc/*/changelog*)
run(gzip -9n ${texts})

file(GLOB_RECURSE archives ${folder}/*.a)
run(strip --strip-debug --remove-section=.comment --enable-deterministic-archives ${archives})

file(WRITE ${folder}/debian/control "")  # dpkg-shlibdeps looks for one
foreach(component IN ITEMS InkoraLibrary InkoraTool)
    file(GLOB_RECURSE binaries ${folder}/${component}/*/bin/* ${folder}/${component}/*.so.*)
    run(strip --strip-unneeded --remove-section=.comment --remove-section=.note ${binaries})

    # What they need. CPack can ask for it by itself, but then has scripts of the package run
    # ldconfig, which is up to a trigger of dpkg.
    file(MAKE_DIRECTORY ${folder}/${component}/DEBIAN)
    run(dpkg-shlibdeps -O -L${CPACK_INKORA_BUILD}/shlibs -l${CPACK_INKORA_BUILD}/src ${binaries})
    file(REMOVE_RECURSE ${folder}/${component}/DEBIAN)
    string(REGEX REPLACE "^shlibs:Depends=|\n$" "" output "${output}")
    string(TOUPPER ${component} key)
    set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${output}")
endforeach()
