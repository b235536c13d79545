#ifndef BRIDGECTL_EVENTSERVER_H
#define BRIDGECTL_EVENTSERVER_H

#include <cstdint>
#include <string>

// A connection that only tells whose the server is; closed with the object.
class EventServerProbe {
 public:
    EventServerProbe() = default;
    ~EventServerProbe();
    EventServerProbe(const EventServerProbe&) = delete;
    EventServerProbe& operator=(const EventServerProbe&) = delete;

    // False when nobody serves the name, or no connection is free at the moment.
    bool connect(const std::string& serverName);

    // The process of the server. Only after connect().
    std::uint32_t process() const;

    // Whether this process is the server. Only after connect().
    bool isOwn() const;

 private:
    void* pipe_ = nullptr;
};

#endif
