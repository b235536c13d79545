#ifndef TESTS_PROOF_IMPORTTABLE_H
#define TESTS_PROOF_IMPORTTABLE_H

// Functions in the place of those that this program imports from the system.

// Puts `replacement` into the program's import table, and what stood there into `original` before.
// A name that the program does not import fails the test.
void replaceImport(const char* name, void* replacement, void** original);

// Replaces an imported function while it lives:
//
//     const ReplacedImport<decltype(::CancelIoEx)> refused("CancelIoEx", [](...) -> BOOL {...});
//
// What the program does on other threads goes to the replacement too.
template <typename Function>
class ReplacedImport {
 public:
    ReplacedImport(const char* name, Function* replacement) : name_(name) {
        replaceImport(name_, reinterpret_cast<void*>(replacement), &original_);
    }
    ~ReplacedImport() {
        void* ignored = nullptr;
        if (original_ != nullptr) replaceImport(name_, original_, &ignored);
    }
    ReplacedImport(const ReplacedImport&) = delete;
    ReplacedImport& operator=(const ReplacedImport&) = delete;

 private:
    const char* name_;
    void* original_ = nullptr;
};

#endif
