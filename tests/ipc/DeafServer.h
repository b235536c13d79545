#ifndef TESTS_IPC_DEAFSERVER_H
#define TESTS_IPC_DEAFSERVER_H

#include <atomic>
#include <cstddef>
#include <string>

#include "support/Platform.h"
#include "support/RawServer.h"

// A server that reads this many bytes of its client and nothing more. It never replies.
class DeafServer {
 public:
    DeafServer(const std::string& name, std::size_t bytes, std::size_t bufferSize)
        : server_(
              name,
              [this, bytes](RawPipe& pipe) {
                  if (bytes > 0) pipe.read(bytes);
                  while (!ends_) sleepMs(5);
              },
              bufferSize) {}
    ~DeafServer() { ends_ = true; }
    DeafServer(const DeafServer&) = delete;
    DeafServer& operator=(const DeafServer&) = delete;

 private:
    std::atomic<bool> ends_{false};  // declared first, because the server uses it
    RawServer server_;
};

#endif
