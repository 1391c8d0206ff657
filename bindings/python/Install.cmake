# Run by `cmake --install`: puts the package where the Python found looks for packages beneath the
# prefix, and notes in it where the library is, relative to it.
if(NOT python_dir)
    execute_process(COMMAND ${python} -c [[
import os, sys, sysconfig
prefix = base = sys.argv[1]
schemes = sysconfig.get_scheme_names()
scheme = "posix_prefix"
if prefix == "/usr" and "deb_system" in schemes:
    scheme = "deb_system"
elif prefix == "/usr/local" and "posix_local" in schemes:
    scheme, base = "posix_local", "/usr"
folder = sysconfig.get_path("purelib", scheme, {"base": base, "installed_base": base})
print(os.path.relpath(folder, prefix), end="")]]
        ${CMAKE_INSTALL_PREFIX} OUTPUT_VARIABLE python_dir COMMAND_ERROR_IS_FATAL ANY)
endif()

file(INSTALL ${package} DESTINATION ${CMAKE_INSTALL_PREFIX}/${python_dir}
    FILES_MATCHING PATTERN *.py PATTERN py.typed PATTERN __pycache__ EXCLUDE)
if(library)
    cmake_path(ABSOLUTE_PATH library BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX})
    cmake_path(RELATIVE_PATH library
        BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}/${python_dir}/inkorakit)
    file(WRITE ${build_dir}/library-path ${library}\n)
    file(INSTALL ${build_dir}/library-path
        DESTINATION ${CMAKE_INSTALL_PREFIX}/${python_dir}/inkorakit)
endif()
