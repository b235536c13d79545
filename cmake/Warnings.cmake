# Warnings for the project's own targets. A warning is an error. Tests have a smaller set, because they
# register themselves with global objects.
add_library(test_warnings INTERFACE)
add_library(bridge_warnings INTERFACE)
target_link_libraries(bridge_warnings INTERFACE test_warnings)
if(MSVC)
    # 4510, 4610: records with reference members have no constructors.
    target_compile_options(test_warnings INTERFACE /W4 /WX /wd4510 /wd4610)
    target_compile_definitions(test_warnings INTERFACE _CRT_SECURE_NO_WARNINGS)
else()
    target_compile_options(test_warnings INTERFACE
        -Wall -Wextra -Werror -Wshadow -Wconversion -Wformat=2 -Wdocumentation)
    if(WIN32)  # libc++ annotates its locks
        target_compile_options(test_warnings INTERFACE -Wthread-safety)
        target_compile_definitions(test_warnings INTERFACE
            _LIBCPP_ENABLE_THREAD_SAFETY_ANNOTATIONS)
    endif()
    target_compile_options(bridge_warnings INTERFACE
        -Wglobal-constructors -Wexit-time-destructors -Wpedantic)
endif()
