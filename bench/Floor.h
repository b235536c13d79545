#ifndef BENCH_FLOOR_H
#define BENCH_FLOOR_H

#include <cstdint>
#include <string>
#include <string_view>

#include "SampleConf.h"
#include "support/WindowsForTests.h"

// What the system itself costs: the bare calls, with no checks but those that a measurement needs.

// A handle that closes itself.
class FloorHandle {
 public:
    explicit FloorHandle(HANDLE handle = nullptr) : handle_(handle) {}
    ~FloorHandle() { close(); }
    FloorHandle(const FloorHandle&) = delete;
    FloorHandle& operator=(const FloorHandle&) = delete;

    HANDLE get() const { return handle_; }
    void close();

 private:
    HANDLE handle_;
};

HANDLE floorOpenForRead(const wchar_t* path);
HANDLE floorCreate(const wchar_t* path);
HANDLE floorOpenForAppend(const wchar_t* path);

std::string floorRead(const wchar_t* path);
void floorWrite(HANDLE file, std::string_view bytes);

// Reads a configuration in one piece and splits its lines into an ordered map, with the hint that
// they come in order.
KeyValues floorLoad(const wchar_t* path);

// A new text of malloc's with these bytes.
char* floorCopy(std::string_view text);

// Gives a file another time of its last change, so that caches of its content are stale.
void floorTouch(const wchar_t* path);

#endif
