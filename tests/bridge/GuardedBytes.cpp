#include "GuardedBytes.h"

#include <cstring>

#include "support/WindowsForTests.h"

GuardedBytes::GuardedBytes(std::string_view bytes) {
    constexpr std::size_t kPage = 4096;
    const std::size_t size = (bytes.size() + kPage - 1) / kPage * kPage;
    pages_ = ::VirtualAlloc(nullptr, size + kPage, MEM_RESERVE, PAGE_NOACCESS);
    if (size > 0) ::VirtualAlloc(pages_, size, MEM_COMMIT, PAGE_READWRITE);
    data_ = static_cast<std::uint8_t*>(pages_) + size - bytes.size();
    if (!bytes.empty()) std::memcpy(data_, bytes.data(), bytes.size());
}

GuardedBytes::~GuardedBytes() { ::VirtualFree(pages_, 0, MEM_RELEASE); }
