#ifndef TESTS_BRIDGE_GUARDEDBYTES_H
#define TESTS_BRIDGE_GUARDEDBYTES_H

#include <cstddef>
#include <cstdint>
#include <string_view>

// Bytes at the end of accessible memory: reading the byte after them ends the process.
class GuardedBytes {
 public:
    explicit GuardedBytes(std::string_view bytes);
    ~GuardedBytes();
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    const std::uint8_t* data() const { return data_; }

 private:
    std::size_t size_;  // of the pages, including the inaccessible one
    void* pages_;
    std::uint8_t* data_;
};

#endif
