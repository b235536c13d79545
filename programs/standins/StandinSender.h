#ifndef STANDINS_STANDINSENDER_H
#define STANDINS_STANDINSENDER_H

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "StandinDecode.h"
#include "StandinEvents.h"
#include "StandinScript.h"
#include "xpl/Xattributes.h"

// How and where to send events.
struct StandinSending {
    std::vector<std::string> clients;  // ids of the front ends to send to
    StandinScript script;              // its settings for events, not its steps
    StandinFormat format = StandinFormat::Text;

    // Receives the lines about deliveries, each with its line feed.
    std::function<void(const std::string& lines)> report;
};

// The ids that the library accepts.
std::vector<std::string> standinKnownClients();

// Parses ids separated by commas. Ignores "none".
std::vector<std::string> standinParseClients(const std::string& list);

// Sends events in order to every front end that has a server now: over one connection, or over one
// per event if the script makes a connection unusable after each. Returns the number of front ends
// that accepted all events. Does nothing without clients.
int standinSend(const StandinSending& sending, const std::vector<StandinEvent>& events);

// Runs steps on its own thread: a front end may send a request while it handles an event, and the
// program must read it.
class StandinSender {
 public:
    explicit StandinSender(StandinSending sending);
    // Waits until all steps are done.
    ~StandinSender();
    StandinSender(const StandinSender&) = delete;
    StandinSender& operator=(const StandinSender&) = delete;

    void post(const StandinSteps& steps);

    // Skips the pauses of all remaining steps.
    void hurry();

 private:
    void run();
    bool next(StandinStep& step);
    void pause(int milliseconds);

    const StandinSending sending_;
    std::mutex lock_;
    std::condition_variable_any changed_;
    std::deque<StandinStep> steps_ XTS_GUARDED_BY(lock_);
    bool hurried_ XTS_GUARDED_BY(lock_) = false;
    bool ending_ XTS_GUARDED_BY(lock_) = false;
    std::thread thread_;
};

#endif
