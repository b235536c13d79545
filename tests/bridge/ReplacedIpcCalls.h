#ifndef TESTS_REPLACEDIPCCALLS_H
#define TESTS_REPLACEDIPCCALLS_H

#include "bridge/BridgeIpcCalls.h"

// Replaces the library's initialisation of clients or servers while it lives.
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
