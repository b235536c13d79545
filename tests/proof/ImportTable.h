#ifndef TESTS_PROOF_IMPORTTABLE_H
#define TESTS_PROOF_IMPORTTABLE_H

// Replaces functions that this program, or a library that it has loaded, imports from the system.

// Stores the module's import in `original`, and puts `replacement` in its place. A null module is
// this program. A name that the module does not import fails the test.
void replaceImport(const char* module, const char* name, void* replacement, void** original);

// Replaces an imported function while it lives:
//
//     const auto refused = REPLACED(CancelIoEx, [](...) -> BOOL {...});
//
// The module's calls on other threads go to the replacement too.
#define REPLACED(function, ...) (ReplacedImport<decltype(::function)>(#function, __VA_ARGS__))

template <typename Function>
class ReplacedImport {
 public:
    ReplacedImport(const char* name, Function* replacement, const char* module = nullptr)
        : module_(module), name_(name) {
        replaceImport(module_, name_, reinterpret_cast<void*>(replacement), &original_);
    }
    ~ReplacedImport() {
        void* ignored = nullptr;
        if (original_ != nullptr) replaceImport(module_, name_, original_, &ignored);
    }
    ReplacedImport(const ReplacedImport&) = delete;
    ReplacedImport& operator=(const ReplacedImport&) = delete;

 private:
    const char* module_;
    const char* name_;
    void* original_ = nullptr;
};

void setSystemError(unsigned long error);
void* systemAddress(const char* name, const char* module);

// A replacement that only fails with this Windows error:
//
//     const auto refused = REPLACED(ReadFile, failing<ERROR_CRC, FALSE>);
template <unsigned long kError, auto kResult, typename Result, typename... Arguments>
Result failing(Arguments... /*ignored*/) {
    setSystemError(kError);
    return kResult;
}

// The system's own function, not the one in the import table.
template <typename Function>
Function* systemFunction(const char* name, const char* module = "kernel32.dll") {
    return reinterpret_cast<Function*>(systemAddress(name, module));
}

// Calls it, for replacements that are templates over their function's name.
template <const char* kName, typename Result, typename... Arguments>
Result callSystem(Arguments... arguments) {
    static auto* const function = systemFunction<Result(Arguments...)>(kName);
    return function(arguments...);
}

#endif
