#ifndef FUZZ_CHECK_H
#define FUZZ_CHECK_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

// A property that must hold for every input: the process ends, and the fuzzer keeps the input.
inline void check(bool holds, const char* property) {
    if (holds) return;
    std::fprintf(stderr, "broken: %s\n", property);
    std::abort();
}

inline std::string_view textOf(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

#endif
