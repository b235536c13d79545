#include "Floor.h"

#include <cstdlib>
#include <cstring>

#include "Bench.h"

namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

HANDLE open(const wchar_t* path, DWORD access, DWORD disposition) {
    const HANDLE file = ::CreateFileW(path, access, kShareAll, nullptr, disposition,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    benchCheck(file != INVALID_HANDLE_VALUE, "cannot open a file");
    return file;
}

void splitLine(std::string_view line, KeyValues& values) {
    const std::size_t equals = line.find('=');
    const std::string_view value = line.substr(equals + 2, line.size() - equals - 3);
    values.emplace_hint(values.end(), line.substr(0, equals), value);
}

}  // namespace

void FloorHandle::close() {
    if (handle_ != nullptr) ::CloseHandle(handle_);
    handle_ = nullptr;
}

HANDLE floorOpenForRead(const wchar_t* path) { return open(path, GENERIC_READ, OPEN_EXISTING); }

HANDLE floorCreate(const wchar_t* path) { return open(path, GENERIC_WRITE, CREATE_ALWAYS); }

HANDLE floorOpenForAppend(const wchar_t* path) {
    return open(path, FILE_APPEND_DATA | SYNCHRONIZE, OPEN_ALWAYS);
}

std::string floorRead(const wchar_t* path) {
    const FloorHandle file(floorOpenForRead(path));
    LARGE_INTEGER size{};
    ::GetFileSizeEx(file.get(), &size);
    std::string content(static_cast<std::size_t>(size.QuadPart), '\0');
    DWORD done = 0;
    ::ReadFile(file.get(), content.data(), static_cast<DWORD>(content.size()), &done, nullptr);
    benchCheck(done == content.size(), "cannot read a file");
    return content;
}

void floorWrite(HANDLE file, std::string_view bytes) {
    DWORD done = 0;
    ::WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &done, nullptr);
    benchCheck(done == bytes.size(), "cannot write a file");
}

KeyValues floorLoad(const wchar_t* path) {
    const std::string content = floorRead(path);
    KeyValues values;
    for (std::string_view rest = content; !rest.empty();) {
        const std::size_t end = rest.find('\n');
        splitLine(rest.substr(0, end), values);
        rest.remove_prefix(end + 1);
    }
    return values;
}

char* floorCopy(std::string_view text) {
    char* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    std::memcpy(copy, text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

void floorTouch(const wchar_t* path) {
    static std::uint64_t seconds = 0;
    constexpr std::uint64_t kSecond = 10'000'000;
    const std::uint64_t time = 0x01D9000000000000 + ++seconds * kSecond;
    const FILETIME stamp{static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
    const FloorHandle file(open(path, FILE_WRITE_ATTRIBUTES, OPEN_EXISTING));
    benchCheck(::SetFileTime(file.get(), nullptr, nullptr, &stamp) != FALSE, "cannot touch a file");
}
