# bridge_platform_sources(LIST): the files that call Windows are named *Winnt. In the native build, the
# sibling replaces each of them: "posix/XfilePosix.cpp" replaces "XfileWinnt.cpp". Nothing else selects
# code by platform.
function(bridge_platform_sources list)
    set(sources ${${list}})
    if(NOT WIN32)
        list(TRANSFORM sources REPLACE "([A-Za-z_]+)Winnt\\.(c|cpp)$" "posix/\\1Posix.\\2")
    endif()
    set(${list} ${sources} PARENT_SCOPE)
endfunction()
