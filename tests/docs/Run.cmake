# Runs a program and compares what it prints with a file, to the byte. It has to end with the status
# given, else 0.
#   cmake -DEXPECTED=FILE [-DSTATUS=NUMBER] -P Run.cmake -- PROGRAM [ARGUMENT...]
cmake_minimum_required(VERSION 3.21)

if(NOT DEFINED STATUS)
    set(STATUS 0)
endif()
set(command "")
set(is_command FALSE)
math(EXPR last "${CMAKE_ARGC} - 1")
foreach(i RANGE ${last})
    if(is_command)
        list(APPEND command "${CMAKE_ARGV${i}}")
    elseif(CMAKE_ARGV${i} STREQUAL "--")
        set(is_command TRUE)
    endif()
endforeach()

execute_process(COMMAND ${command} OUTPUT_VARIABLE printed RESULT_VARIABLE status)
file(READ ${EXPECTED} expected)
if(NOT status STREQUAL STATUS)
    message(FATAL_ERROR "It ended with ${status}, having printed:\n${printed}")
endif()
if(NOT "${printed}" STREQUAL "${expected}")
    message(FATAL_ERROR "It printed:\n${printed}\nand not:\n${expected}")
endif()
