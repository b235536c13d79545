#ifndef TESTS_LOGCAPTURE_H
#define TESTS_LOGCAPTURE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "support/Lines.h"
#include "xpl/Xlog.h"

// Captures all log lines of this process, of every level. One object at a time.
class LogCapture {
 public:
    LogCapture();
    ~LogCapture();
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    struct Line {
        XlogTag tag;
        std::int32_t level;
        std::string file;
        std::string function;
        std::string message;
    };

    std::vector<Line> lines() const;

    // The messages up to this level, as "E CONF message".
    Lines texts(std::int32_t upToLevel = XLOG_INFORMATION) const;

    void clear();

 private:
    XlogLogger previous_;
};

// Switches every log level of this process off. One object at a time.
class LogOff {
 public:
    LogOff();
    ~LogOff();
    LogOff(const LogOff&) = delete;
    LogOff& operator=(const LogOff&) = delete;

    // How many lines were suppressed, and how many were printed.
    int refused() const;
    int printed() const;

 private:
    XlogLogger previous_;
};

// The messages of a log file's text as "E CONF Helper_bridge message". A line without a header
// stays as it is.
Lines logMessages(std::string_view text);

#endif
