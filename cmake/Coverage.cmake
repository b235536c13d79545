# BRIDGE_COVERAGE, the runtime that toolchain/profile.sh builds, makes this a build whose programs
# write a profile of what they reached (LLVM_PROFILE_FILE). For ./run coverage.
set(BRIDGE_COVERAGE "" CACHE FILEPATH "Runtime of source-based coverage")
if(NOT BRIDGE_COVERAGE)
    return()
endif()
add_library(profile_at_end STATIC "${PROJECT_SOURCE_DIR}/tests/coverage/ProfileAtEnd.c")
add_compile_options("$<$<COMPILE_LANGUAGE:C,CXX>:-fprofile-instr-generate;-fcoverage-mapping>")
# Functions that nobody calls count too.
add_link_options(-Wl,--no-gc-sections -Wl,-u,__llvm_profile_runtime)
link_libraries(profile_at_end "${BRIDGE_COVERAGE}")
