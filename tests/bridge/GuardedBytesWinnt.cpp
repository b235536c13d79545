#include "GuardedBytes.h"

#include <cstring>

#include "support/WindowsForTests.h"

namespace {

constexpr std::size_t kPage = 4096;

std::size_t wholePages(std::size_t size) { return (size + kPage - 1) / kPage * kPage; }

}  // namespace

GuardedBytes::GuardedBytes(std::string_view bytes) : size_(wholePages(bytes.size()) + kPage) {
    const std::size_t size = size_ - kPage;
    pages_ = ::VirtualAlloc(nullptr, size_, MEM_RESERVE, PAGE_NOACCESS);
    if (size > 0) ::VirtualAlloc(pages_, size, MEM_COMMIT, PAGE_READWRITE);
    data_ = static_cast<std::uint8_t*>(pages_) + size - bytes.size();
    if (!bytes.empty()) std::memcpy(data_, bytes.data(), bytes.size());
}

GuardedBytes::~GuardedBytes() { ::VirtualFree(pages_, 0, MEM_RELEASE); }
