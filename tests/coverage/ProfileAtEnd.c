/* Part of every program and library of the coverage build: writes the profile of what was reached,
   at the end that the runtime's own exit handler would miss. */
#include <stdlib.h>

#include <windows.h>

void __llvm_profile_initialize_file(void);
int __llvm_profile_write_file(void);

/* Defined here, the runtime leaves the writing to this file. */
int __llvm_profile_runtime;

static void* watch;

/* A fatal break ends the process at once. */
static LONG CALLBACK writeAtBreak(EXCEPTION_POINTERS* exception) {
    const DWORD code = exception->ExceptionRecord->ExceptionCode;
    if (code == EXCEPTION_BREAKPOINT) __llvm_profile_write_file();
    return EXCEPTION_CONTINUE_SEARCH;
}

static void finish(void) {
    RemoveVectoredExceptionHandler(watch);
    __llvm_profile_write_file();
}

/* Before every other constructor, so that its exit handler comes behind all the destructors, which
   count too. */
__attribute__((constructor(101))) static void start(void) {
    __llvm_profile_initialize_file();
    watch = AddVectoredExceptionHandler(1, writeAtBreak);
    atexit(finish);
}
