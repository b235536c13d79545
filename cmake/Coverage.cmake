# Coverage build, for ./run coverage. BRIDGE_COVERAGE is the runtime that toolchain/profile.sh builds.
# Each program writes a profile to LLVM_PROFILE_FILE.
set(BRIDGE_COVERAGE "" CACHE FILEPATH "Runtime of source-based coverage")
if(NOT BRIDGE_COVERAGE)
    return()
endif()
add_library(profile_at_end STATIC "${PROJECT_SOURCE_DIR}/tests/coverage/ProfileAtEnd.c")
add_compile_options("$<$<COMPILE_LANGUAGE:C,CXX>:-fprofile-instr-generate;-fcoverage-mapping>")
# Includes functions that nothing calls.
add_link_options(-Wl,--no-gc-sections -Wl,-u,__llvm_profile_runtime)
link_libraries(profile_at_end "${BRIDGE_COVERAGE}")
