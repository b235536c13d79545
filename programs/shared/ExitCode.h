#ifndef SHARED_EXITCODE_H
#define SHARED_EXITCODE_H

// X(name, number, meaning)
#define PROGRAM_EXIT_CODES(X)                                              \
    X(Success, 0, "done")                                                  \
    X(Found, 1, "the doctor found a problem")                              \
    X(Usage, 2, "the command line is not understood")                      \
    X(UnknownName, 3, "no such key, instance or app")                      \
    X(BadValue, 4, "the value, stored or given, does not fit the type")    \
    X(Library, 5, "the library cannot start or failed; see the log")       \
    X(Commit, 6, "the change could not be written; the old file is whole") \
    X(Unset, 7, "the key has no value")                                    \
    X(Program, 8, "the program could not be started or asked")             \
    X(Timeout, 9, "the events that were waited for did not come in time")  \
    X(NameInUse, 10, "another front end receives the client's events")     \
    X(Output, 11, "standard output cannot be written")                     \
    X(Reported, 12, "an event reported that the work failed")              \
    X(File, 13, "a file that was asked for cannot be written")

enum class ExitCode : int {
#define PROGRAM_ENUMERATOR(name, number, meaning) name = number,
    PROGRAM_EXIT_CODES(PROGRAM_ENUMERATOR)
#undef PROGRAM_ENUMERATOR
};

// The name of a code: "UnknownName".
constexpr const char* exitCodeName(ExitCode code) {
    switch (code) {
#define PROGRAM_NAME(name, number, meaning) \
    case ExitCode::name:                    \
        return #name;
        PROGRAM_EXIT_CODES(PROGRAM_NAME)
#undef PROGRAM_NAME
    }
    return "";
}

// The text for the help: "no such key, instance or app".
constexpr const char* exitCodeMeaning(ExitCode code) {
    switch (code) {
#define PROGRAM_MEANING(name, number, meaning) \
    case ExitCode::name:                       \
        return meaning;
        PROGRAM_EXIT_CODES(PROGRAM_MEANING)
#undef PROGRAM_MEANING
    }
    return "";
}

#endif
