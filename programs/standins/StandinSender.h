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

// How events are sent, and where to.
struct StandinSending {
    std::vector<std::string> clients;  // ids of the front ends that are asked for
    StandinScript script;              // its wishes about events, not its steps
    StandinFormat format = StandinFormat::Text;

    // Takes lines about what was delivered, each with its line feed.
    std::function<void(const std::string& lines)> report;
};

// The ids that the library knows.
std::vector<std::string> standinKnownClients();

// Ids from a comma list; "none" is no id.
std::vector<std::string> standinParseClients(const std::string& list);

// Sends events to every front end that serves its name at this moment, in order, on one connection
// each, or on a connection for each event when the script spoils what follows it. Returns how many
// front ends took them all. Does nothing without clients.
int standinSend(const StandinSending& sending, const std::vector<StandinEvent>& events);

// Works off steps on a thread of its own: a front end may send a request while it is told of an
// event, and the program must be there to read it.
class StandinSender {
 public:
    explicit StandinSender(StandinSending sending);
    // Waits until every step is done.
    ~StandinSender();
    StandinSender(const StandinSender&) = delete;
    StandinSender& operator=(const StandinSender&) = delete;

    void post(const StandinSteps& steps);

    // Ends the pauses, also of steps to come.
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
