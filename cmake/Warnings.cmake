# Warnings of the project's own targets; any of them ends the build. Tests register themselves with
# global objects, so that theirs is the smaller set.
add_library(test_warnings INTERFACE)
add_library(bridge_warnings INTERFACE)
target_link_libraries(bridge_warnings INTERFACE test_warnings)
if(MSVC)
    target_compile_options(test_warnings INTERFACE /W4 /WX /utf-8)
else()
    target_compile_options(test_warnings INTERFACE
        -Wall -Wextra -Werror -Wshadow -Wconversion -Wthread-safety -Wformat=2 -Wdocumentation)
    target_compile_definitions(test_warnings INTERFACE _LIBCPP_ENABLE_THREAD_SAFETY_ANNOTATIONS)
    target_compile_options(bridge_warnings INTERFACE
        -Wglobal-constructors -Wexit-time-destructors)
endif()
