#ifndef TESTS_HOSTS_EVENT_PRINTER_HPP
#define TESTS_HOSTS_EVENT_PRINTER_HPP

#include <bridge/bridge.hpp>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

// The events that a C++ host gets, printed as the plain host prints them.
class EventPrinter {
 public:
    // Functions that print; the object must outlive them.
    bridge::Callbacks callbacks();

    // Waits until so many events were printed; false after half a minute.
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
