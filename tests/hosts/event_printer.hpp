#ifndef TESTS_HOSTS_EVENT_PRINTER_HPP
#define TESTS_HOSTS_EVENT_PRINTER_HPP

#include <bridge/bridge.hpp>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

// Prints the events of a C++ host as the plain host does.
class EventPrinter {
 public:
    // Functions that print. The object must outlive them.
    bridge::Callbacks callbacks();

    // Waits until this many events were printed. Returns false after half a minute.
    bool waitFor(int count);

 private:
    void print(std::string line);

    std::mutex lock_;
    std::condition_variable changed_;
    int count_ = 0;
    std::thread::id main_ = std::this_thread::get_id();
    std::thread::id server_;
};

#endif
