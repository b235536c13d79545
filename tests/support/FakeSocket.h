#ifndef TESTS_FAKESOCKET_H
#define TESTS_FAKESOCKET_H

#include <QLocalSocket>
#include <algorithm>
#include <cstddef>
#include <string>

// Qt's own reading and buffering, over bytes in memory.
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

#endif
