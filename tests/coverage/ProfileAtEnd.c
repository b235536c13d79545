/* Part of every program and library of the coverage build. Writes the coverage profile at exits
   that the runtime's own exit handler misses. */
#include <stdlib.h>

#include <windows.h>

void __llvm_profile_initialize_file(void);
int __llvm_profile_write_file(void);

/* This definition disables the runtime's own writing. */
int __llvm_profile_runtime;

static void* watch;

/* A fatal break ends the process without exit handlers. */
static LONG CALLBACK writeAtBreak(EXCEPTION_POINTERS* exception) {
    const DWORD code = exception->ExceptionRecord->ExceptionCode;
    if (code == EXCEPTION_BREAKPOINT) __llvm_profile_write_file();
    return EXCEPTION_CONTINUE_SEARCH;
}

static void finish(void) {
    RemoveVectoredExceptionHandler(watch);
    __llvm_profile_write_file();
}

/* Runs before every other constructor, so that its exit handler runs after all destructors, whose
   coverage counts too. */
__attribute__((constructor(101))) static void start(void) {
    __llvm_profile_initialize_file();
    watch = AddVectoredExceptionHandler(1, writeAtBreak);
    atexit(finish);
}
