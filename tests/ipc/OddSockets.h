#ifndef TESTS_IPC_ODDSOCKETS_H
#define TESTS_IPC_ODDSOCKETS_H

#include <new>

#include "support/FakeSocket.h"

// Announces more bytes than it has, until a read finds none.
class LossySocket : public FakeSocket {
 public:
    qint64 bytesAvailable() const override { return FakeSocket::bytesAvailable() + lost; }
    qint64 lost = 0;

 protected:
    qint64 readData(char* to, qint64 size) override {
        if (waiting.empty()) lost = 0;
        return FakeSocket::readData(to, size);
    }
};

// Runs out of memory in a read after `readsLeft` others, or in every write.
class ScarceSocket : public FakeSocket {
 public:
    int readsLeft = 1'000'000;
    bool writes = true;

 protected:
    qint64 readData(char* to, qint64 size) override {
        if (readsLeft-- == 0) throw std::bad_alloc();
        return FakeSocket::readData(to, size);
    }
    qint64 writeData(const char* bytes, qint64 size) override {
        if (!writes) throw std::bad_alloc();
        return FakeSocket::writeData(bytes, size);
    }
};

#endif
