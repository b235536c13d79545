# bridge_layer(NAME SOURCES ... [WINDOWS_SOURCES ...] [DEPENDS ...] [SYSTEM_LIBRARIES ...])
#
# Declares the current folder of Source/ as a layer, which is a static library. Includes name paths below
# Source/, so the compiler finds the headers of every layer. tests/gates/includes.py rejects headers of
# layers that DEPENDS does not name. WINDOWS_SOURCES belong to the Windows build only. SYSTEM_LIBRARIES are
# libraries of Windows.
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
