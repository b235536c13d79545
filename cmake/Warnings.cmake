# Warnings of the project's own targets; any of them ends the build.
add_library(bridge_warnings INTERFACE)
if(MSVC)
    target_compile_options(bridge_warnings INTERFACE /W4 /WX /utf-8)
else()
    target_compile_options(bridge_warnings INTERFACE
        -Wall -Wextra -Werror -Wshadow -Wconversion -Wthread-safety -Wformat=2
        -Wglobal-constructors -Wexit-time-destructors -Wdocumentation)
    target_compile_definitions(bridge_warnings INTERFACE _LIBCPP_ENABLE_THREAD_SAFETY_ANNOTATIONS)
endif()
