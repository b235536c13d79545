#ifndef BENCH_FLOOR_H
#define BENCH_FLOOR_H

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "SampleConf.h"

// The floor: the cost of the bare system calls, with only the checks that a measurement needs.

using FloorPath = std::filesystem::path;

// Converts a path of the library to one of the system.
FloorPath floorPath(const std::string& path);

// An open file. The destructor closes it.
class FloorFile {
 public:
    enum Mode { Read, Create, Append };

    FloorFile(const FloorPath& path, Mode mode);
    ~FloorFile();
    FloorFile(const FloorFile&) = delete;
    FloorFile& operator=(const FloorFile&) = delete;

    std::string read();  // the whole file
    void write(std::string_view bytes);
    void flush();  // to disk

 private:
    std::intptr_t handle_;
};

// Replaces a file by another one.
void floorMove(const FloorPath& from, const FloorPath& to);

// A named mutex, shared by processes.
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

// Reads a whole configuration and inserts its lines into an ordered map, with a hint for sorted
// input.
KeyValues floorLoad(const FloorPath& path);

// Copies bytes into memory from malloc().
char* floorCopy(std::string_view text);

// Changes the modification time of a file, so that cached content is stale.
void floorTouch(const FloorPath& path);

#endif
