#include <sys/mman.h>

#include <cstring>
#include <new>

#include "GuardedBytes.h"

namespace {

constexpr std::size_t kPage = 4096;

std::size_t wholePages(std::size_t size) { return (size + kPage - 1) / kPage * kPage; }

}  // namespace

GuardedBytes::GuardedBytes(std::string_view bytes) : size_(wholePages(bytes.size()) + kPage) {
    pages_ = ::mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, /*fd=*/-1, 0);
    if (pages_ == MAP_FAILED) throw std::bad_alloc();
    const std::size_t size = size_ - kPage;
    if (size > 0) ::mprotect(pages_, size, PROT_READ | PROT_WRITE);
    data_ = static_cast<std::uint8_t*>(pages_) + size - bytes.size();
    if (!bytes.empty()) std::memcpy(data_, bytes.data(), bytes.size());
}

GuardedBytes::~GuardedBytes() { ::munmap(pages_, size_); }
