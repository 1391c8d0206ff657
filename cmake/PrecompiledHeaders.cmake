# The standard headers, compiled once for the many small sources that include them: a build from
# nothing takes half as long. Off within other projects, which may have ways of their own, and under
# ccache, which gains little where headers are precompiled.
set(precompile ${PROJECT_IS_TOP_LEVEL})
if("${CMAKE_CXX_COMPILER_LAUNCHER} ${CMAKE_CXX_COMPILER}" MATCHES "ccache")
    set(precompile OFF)
endif()
option(INKORA_PRECOMPILE_HEADERS "Precompile the standard headers" ${precompile})

set(standard_headers
    <algorithm> <array> <bit> <cerrno> <charconv> <cmath> <concepts> <cstddef> <cstdint> <cstdio>
    <cstdlib> <cstring> <deque> <functional> <limits> <map> <memory> <optional> <span> <stdexcept>
    <string> <string_view> <system_error> <unordered_map> <utility> <variant> <vector>)

# Precompiles the standard headers, and those named besides, for the sources of a target.
function(precompile_headers target)
    if(INKORA_PRECOMPILE_HEADERS)
        target_precompile_headers(${target} PRIVATE ${standard_headers} ${ARGN})
    endif()
endfunction()

# The same for a number of targets, which are compiled alike and share them. What the headers besides
# need is linked to `name`.
function(add_precompiled_headers name)
    set(nothing ${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp)
    file(CONFIGURE OUTPUT ${nothing} CONTENT "")
    add_library(${name} OBJECT EXCLUDE_FROM_ALL ${nothing})
    target_link_libraries(${name} PRIVATE InkoraFlags)
    precompile_headers(${name} ${ARGN})
endfunction()

function(share_precompiled_headers target name)
    if(INKORA_PRECOMPILE_HEADERS)
        target_precompile_headers(${target} REUSE_FROM ${name})
    endif()
endfunction()
