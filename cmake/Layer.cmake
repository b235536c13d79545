# bridge_layer(NAME SOURCES ... [WINDOWS_SOURCES ...] [DEPENDS ...] [SYSTEM_LIBRARIES ...])
#
# The folder that calls it, one of Source/, as a static library. Its headers are reached as "NAME/Header.h", and only
# by those who declare the dependency: an include of a layer that is not declared does not build.
# WINDOWS_SOURCES are those that only the siblings of Windows need. SYSTEM_LIBRARIES are those of
# Windows.
function(bridge_layer name)
    cmake_parse_arguments(LAYER "" "" "SOURCES;WINDOWS_SOURCES;DEPENDS;SYSTEM_LIBRARIES" ${ARGN})
    if(CMAKE_HOST_WIN32)  # links need a privilege there
        set(include_root "${PROJECT_SOURCE_DIR}/Source")
    else()
        set(include_root "${PROJECT_BINARY_DIR}/layers/${name}")
        file(MAKE_DIRECTORY "${include_root}")
        file(CREATE_LINK "${CMAKE_CURRENT_SOURCE_DIR}" "${include_root}/${name}" SYMBOLIC)
    endif()
    bridge_platform_sources(LAYER_SOURCES)
    if(WIN32)
        list(APPEND LAYER_SOURCES ${LAYER_WINDOWS_SOURCES})
    endif()
    add_library(${name} STATIC ${LAYER_SOURCES})
    target_include_directories(${name} PUBLIC "${include_root}")
    target_link_libraries(${name} PUBLIC ${LAYER_DEPENDS} PRIVATE bridge_warnings)
    if(WIN32)
        target_link_libraries(${name} PUBLIC ${LAYER_SYSTEM_LIBRARIES})
    endif()
endfunction()
