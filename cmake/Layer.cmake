# bridge_layer(NAME SOURCES ... [WINDOWS_SOURCES ...] [DEPENDS ...] [SYSTEM_LIBRARIES ...])
#
# The folder that calls it, below Source/, as a static library. An include names a header's path below
# Source/, so the compiler finds the headers of every layer; tests/gates/includes.py refuses those of a
# layer that is not declared. WINDOWS_SOURCES are those that only the siblings of Windows need.
# SYSTEM_LIBRARIES are those of Windows.
function(bridge_layer name)
    cmake_parse_arguments(LAYER "" "" "SOURCES;WINDOWS_SOURCES;DEPENDS;SYSTEM_LIBRARIES" ${ARGN})
    bridge_platform_sources(LAYER_SOURCES)
    if(WIN32)
        list(APPEND LAYER_SOURCES ${LAYER_WINDOWS_SOURCES})
    endif()
    add_library(${name} STATIC ${LAYER_SOURCES})
    set_target_properties(${name} PROPERTIES BRIDGE_LAYER ON)
    target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/Source")
    target_link_libraries(${name} PUBLIC ${LAYER_DEPENDS} PRIVATE bridge_warnings)
    if(WIN32)
        target_link_libraries(${name} PUBLIC ${LAYER_SYSTEM_LIBRARIES})
    endif()
endfunction()
