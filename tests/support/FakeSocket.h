#ifndef TESTS_FAKESOCKET_H
#define TESTS_FAKESOCKET_H

#include <QLocalServer>
#include <QLocalSocket>
#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

// Qt's reading and buffering over bytes in memory.
class FakeSocket : public QLocalSocket {
 public:
    FakeSocket() { setOpenMode(QIODevice::ReadWrite); }

    qint64 bytesAvailable() const override {
        return QIODevice::bytesAvailable() + static_cast<qint64>(waiting.size());
    }

    std::string waiting;
    std::string written;

 protected:
    qint64 readData(char* to, qint64 size) override {
        const std::size_t count = std::min(static_cast<std::size_t>(size), waiting.size());
        waiting.copy(to, count);
        waiting.erase(0, count);
        return static_cast<qint64>(count);
    }

    qint64 writeData(const char* bytes, qint64 size) override {
        written.append(bytes, static_cast<std::size_t>(size));
        return size;
    }
};

// A server with one pending connection.
class OneSocketServer : public QLocalServer {
 public:
    explicit OneSocketServer(QLocalSocket* socket) : socket_(socket) {}
    QLocalSocket* nextPendingConnection() override { return std::exchange(socket_, nullptr); }

 private:
    QLocalSocket* socket_;
};

#endif
