# bridge_system_headers(TARGET FOLDER...): header-only libraries of the build machine as an
# INTERFACE target. Only these folders of /usr/include are seen: the rest belongs to another system.
function(bridge_system_headers target)
    set(root "${PROJECT_BINARY_DIR}/system-headers/${target}")
    file(MAKE_DIRECTORY "${root}")
    foreach(folder ${ARGN})
        if(NOT EXISTS "/usr/include/${folder}")
            message(FATAL_ERROR "the headers /usr/include/${folder} are missing")
        endif()
        file(CREATE_LINK "/usr/include/${folder}" "${root}/${folder}" SYMBOLIC)
    endforeach()
    add_library(${target} INTERFACE)
    target_include_directories(${target} SYSTEM INTERFACE "${root}")
endfunction()
