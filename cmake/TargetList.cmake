# bridge_write_targets(FILE): lists the targets for tests/gates/includes.py. The lines of a target are
#
#   target NAME      "layer NAME" for a layer
#   folder PATH      folder of its CMakeLists.txt
#   source PATH      C or C++ file
#   links TARGET     private or public dependency
#   passes TARGET    public or interface dependency
#   search PATH      include folder, in search order
function(bridge_write_targets file)
    bridge_targets_below("${PROJECT_SOURCE_DIR}" targets)
    set(text "")
    foreach(target ${targets})
        bridge_describe_target(${target} description)
        string(APPEND text "${description}")
    endforeach()
    file(GENERATE OUTPUT "${file}" CONTENT "${text}")
endfunction()

function(bridge_targets_below folder result)
    get_property(found DIRECTORY "${folder}" PROPERTY BUILDSYSTEM_TARGETS)
    get_property(subfolders DIRECTORY "${folder}" PROPERTY SUBDIRECTORIES)
    foreach(subfolder ${subfolders})
        bridge_targets_below("${subfolder}" more)
        list(APPEND found ${more})
    endforeach()
    set(${result} ${found} PARENT_SCOPE)
endfunction()

function(bridge_describe_target target result)
    get_target_property(type ${target} TYPE)
    get_target_property(layer ${target} BRIDGE_LAYER)
    get_target_property(folder ${target} SOURCE_DIR)
    get_target_property(sources ${target} SOURCES)
    get_target_property(links ${target} LINK_LIBRARIES)
    get_target_property(passes ${target} INTERFACE_LINK_LIBRARIES)
    if(layer)
        set(text "layer ${target}\nfolder ${folder}\n")
    else()
        set(text "target ${target}\nfolder ${folder}\n")
    endif()
    foreach(source ${sources})
        if(source MATCHES "\\.(c|cpp|h|hpp)$")
            cmake_path(ABSOLUTE_PATH source BASE_DIRECTORY "${folder}" NORMALIZE)
            string(APPEND text "source ${source}\n")
        endif()
    endforeach()
    foreach(kind links passes)
        foreach(library ${${kind}})
            if(TARGET "${library}")  # not a target: a flag for the linker only
                string(APPEND text "${kind} ${library}\n")
            endif()
        endforeach()
    endforeach()
    if(NOT type MATCHES "INTERFACE_LIBRARY|UTILITY")
        set(search "$<REMOVE_DUPLICATES:$<TARGET_PROPERTY:${target},INCLUDE_DIRECTORIES>>")
        string(APPEND text "search $<JOIN:${search},\nsearch >\n")
    endif()
    set(${result} "${text}" PARENT_SCOPE)
endfunction()
