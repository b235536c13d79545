#ifndef STANDINS_STANDINPIPE_H
#define STANDINS_STANDINPIPE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Whether somebody serves a local socket of this name.
bool standinIsServed(const std::string& serverName);

// One end of a local socket, over the system calls themselves. Operations end when the peer goes.
class StandinPipe {
 public:
    static constexpr std::uint32_t kForever = 0xFFFFFFFF;

    StandinPipe() = default;
    ~StandinPipe();
    StandinPipe(StandinPipe&& other) noexcept;
    StandinPipe& operator=(StandinPipe&& other) noexcept;
    StandinPipe(const StandinPipe&) = delete;
    StandinPipe& operator=(const StandinPipe&) = delete;

    // A server's end, which waits for a client. Not open when the system refuses it.
    static StandinPipe listen(const std::string& serverName);

    // A client's end. While every instance of the server is taken it waits, for so long in all. Not
    // open when nobody serves the name, or none became free.
    static StandinPipe connect(const std::string& serverName, std::uint32_t milliseconds);

    bool isOpen() const { return pipe_ != nullptr; }

    // Waits for a client. One that wrote and went has left its bytes.
    bool accept(std::uint32_t milliseconds);

    // Reads until `bytes` has so many.
    bool read(std::string& bytes, std::size_t count);

    // Returns when the peer or the pipe's own memory has all bytes, so that closing loses none.
    bool write(std::string_view bytes, std::uint32_t milliseconds = kForever);

    void close();

 private:
    struct Operation;
    StandinPipe(void* pipe, void* event) : pipe_(pipe), event_(event) {}
    static StandinPipe of(void* pipe);
    bool finish(int ok, Operation& operation, std::uint32_t milliseconds, std::uint32_t& count);

    void* pipe_ = nullptr;   // opened for overlapped operations
    void* event_ = nullptr;  // set when the operation that runs has ended
};

#endif
