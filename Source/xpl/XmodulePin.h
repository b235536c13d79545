#ifndef XPL_XMODULEPIN_H
#define XPL_XMODULEPIN_H

// Keeps the module that contains this code loaded while the object lives. A thread of the module
// needs it: unloading would remove the code that it runs.
class XmodulePin {
 public:
    XmodulePin() noexcept;
    ~XmodulePin();
    XmodulePin(const XmodulePin&) = delete;
    XmodulePin& operator=(const XmodulePin&) = delete;

 private:
    void* module_ = nullptr;
};

// Keeps the module that contains this address loaded until the process ends.
void xmodulePinForever(const void* address) noexcept;

#endif
