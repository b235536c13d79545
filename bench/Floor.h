#ifndef BENCH_FLOOR_H
#define BENCH_FLOOR_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "SampleConf.h"

// What the system itself costs: the bare calls, with no checks but those that a measurement needs.

using FloorPath = std::filesystem::path;

// A path of the library's, as the system has it.
FloorPath floorPath(const std::string& path);

// An open file, which closes itself.
class FloorFile {
 public:
    enum Mode { Read, Create, Append };

    FloorFile(const FloorPath& path, Mode mode);
    ~FloorFile();
    FloorFile(const FloorFile&) = delete;
    FloorFile& operator=(const FloorFile&) = delete;

    std::string read();  // all of it, in one piece
    void write(std::string_view bytes);
    void flush();  // to the disk

 private:
    std::intptr_t handle_;
};

// Puts a file into another one's place.
void floorMove(const FloorPath& from, const FloorPath& to);

// The lock that processes share, of that name.
class FloorMutex {
 public:
    explicit FloorMutex(const char* name);
    ~FloorMutex();
    FloorMutex(const FloorMutex&) = delete;
    FloorMutex& operator=(const FloorMutex&) = delete;
    void lock();
    void unlock();

 private:
    std::intptr_t handle_;
};

std::string floorRead(const FloorPath& path);

// Reads a configuration in one piece and splits its lines into an ordered map, with the hint that
// they come in order.
KeyValues floorLoad(const FloorPath& path);

// A new text of malloc's with these bytes.
char* floorCopy(std::string_view text);

// Gives a file another time of its last change, so that caches of its content are stale.
void floorTouch(const FloorPath& path);

#endif
