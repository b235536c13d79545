# Warnings of the project's own targets; any of them ends the build. Tests register themselves with
# global objects, so that theirs is the smaller set.
add_library(test_warnings INTERFACE)
add_library(bridge_warnings INTERFACE)
target_link_libraries(bridge_warnings INTERFACE test_warnings)
if(MSVC)
    # 4510, 4610: a record with a reference in it is made with braces.
    target_compile_options(test_warnings INTERFACE /W4 /WX /wd4510 /wd4610)
    target_compile_definitions(test_warnings INTERFACE _CRT_SECURE_NO_WARNINGS)
else()
    target_compile_options(test_warnings INTERFACE
        -Wall -Wextra -Werror -Wshadow -Wconversion -Wformat=2 -Wdocumentation)
    if(WIN32)  # built with libc++, whose locks are annotated
        target_compile_options(test_warnings INTERFACE -Wthread-safety)
        target_compile_definitions(test_warnings INTERFACE
            _LIBCPP_ENABLE_THREAD_SAFETY_ANNOTATIONS)
    endif()
    target_compile_options(bridge_warnings INTERFACE
        -Wglobal-constructors -Wexit-time-destructors -Wpedantic)
endif()
