#ifndef STANDINS_STANDINPIPE_H
#define STANDINS_STANDINPIPE_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Whether a local socket of this name has a server.
bool standinIsServed(const std::string& serverName);

// One end of a local socket, on the system calls. Operations end when the peer disconnects.
class StandinPipe {
 public:
    static constexpr std::uint32_t kForever = 0xFFFFFFFF;

    StandinPipe() = default;
    ~StandinPipe();
    StandinPipe(StandinPipe&& other) noexcept;
    StandinPipe& operator=(StandinPipe&& other) noexcept;
    StandinPipe(const StandinPipe&) = delete;
    StandinPipe& operator=(const StandinPipe&) = delete;

    // A server's end, which waits for a client. Not open if the system refuses.
    static StandinPipe listen(const std::string& serverName);

    // A client's end. Waits up to the timeout while all instances of the server are busy. Not open
    // if there is no server, or none became free.
    static StandinPipe connect(const std::string& serverName, std::uint32_t milliseconds);

    bool isOpen() const { return pipe_ != nullptr; }

    // Waits for a client. The bytes of a client that has already disconnected can still be read.
    bool accept(std::uint32_t milliseconds);

    // Reads until `bytes` has this size.
    bool read(std::string& bytes, std::size_t count);

    // Returns when all bytes are with the peer or in the pipe's buffer, so closing loses none.
    bool write(std::string_view bytes, std::uint32_t milliseconds = kForever);

    void close();

 private:
    struct Operation;
    StandinPipe(void* pipe, void* event) : pipe_(pipe), event_(event) {}
    static StandinPipe of(void* pipe);
    bool finish(int ok, Operation& operation, std::uint32_t milliseconds, std::uint32_t& count);

    void* pipe_ = nullptr;   // opened for overlapped operations
    void* event_ = nullptr;  // set when the current operation has ended
};

#endif
