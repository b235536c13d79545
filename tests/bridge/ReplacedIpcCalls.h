#ifndef TESTS_REPLACEDIPCCALLS_H
#define TESTS_REPLACEDIPCCALLS_H

#include "bridge/BridgeIpcCalls.h"

// Puts one of the starts of clients and servers in the place of the library's, as long as it lives.
class ReplacedIpcCalls {
 public:
    explicit ReplacedIpcCalls(decltype(BridgeIpcCalls::clientInit) init) {
        bridgeIpcCalls().clientInit = init;
    }
    explicit ReplacedIpcCalls(decltype(BridgeIpcCalls::serverInit) init) {
        bridgeIpcCalls().serverInit = init;
    }
    ~ReplacedIpcCalls() { bridgeIpcCalls() = before_; }
    ReplacedIpcCalls(const ReplacedIpcCalls&) = delete;
    ReplacedIpcCalls& operator=(const ReplacedIpcCalls&) = delete;

 private:
    const BridgeIpcCalls before_ = bridgeIpcCalls();
};

#endif
