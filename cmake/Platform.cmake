# bridge_platform_sources(LIST): files that call Windows are named *Winnt. Where the build is not for
# Windows, each gives way to its sibling, which is never shipped: "XfileWinnt.cpp" to
# "posix/XfilePosix.cpp". Nothing else decides by platform which code is compiled.
function(bridge_platform_sources list)
    set(sources ${${list}})
    if(NOT WIN32)
        list(TRANSFORM sources REPLACE "([A-Za-z_]+)Winnt\\.(c|cpp)$" "posix/\\1Posix.\\2")
    endif()
    set(${list} ${sources} PARENT_SCOPE)
endfunction()
