#ifndef XPL_XMODULEPIN_H
#define XPL_XMODULEPIN_H

// Keeps the module that this code is linked into loaded while it lives: for as long as a thread of
// the module's own runs, since unloading would take the code from under it.
class XmodulePin {
 public:
    XmodulePin() noexcept;
    ~XmodulePin();
    XmodulePin(const XmodulePin&) = delete;
    XmodulePin& operator=(const XmodulePin&) = delete;

 private:
    void* module_ = nullptr;
};

// Keeps the module that has something at this address loaded until the process ends.
void xmodulePinForever(const void* address) noexcept;

#endif
