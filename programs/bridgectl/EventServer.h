#ifndef BRIDGECTL_EVENTSERVER_H
#define BRIDGECTL_EVENTSERVER_H

#include <cstdint>
#include <string>

// A connection that identifies the server's process. The destructor closes it.
class EventServerProbe {
 public:
    EventServerProbe() = default;
    ~EventServerProbe();
    EventServerProbe(const EventServerProbe&) = delete;
    EventServerProbe& operator=(const EventServerProbe&) = delete;

    // False if no server has this name, or all its connections are in use.
    bool connect(const std::string& serverName);

    // The id of the server's process. Only after connect().
    std::uint32_t process() const;

    // Whether this process is the server. Only after connect().
    bool isOwn() const;

 private:
    void* pipe_ = nullptr;
};

#endif
