#ifndef BRIDGECTL_EVENTSERVER_H
#define BRIDGECTL_EVENTSERVER_H

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

    // Whether this process is the server. Only after connect().
    bool isOwn() const;

 private:
    void* pipe_ = nullptr;
};

#endif
