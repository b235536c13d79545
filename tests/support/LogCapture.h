#ifndef TESTS_LOGCAPTURE_H
#define TESTS_LOGCAPTURE_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "support/Lines.h"
#include "xpl/Xlog.h"

// Takes every log line of this process, of every level, while it lives. One at a time.
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

    // The messages as "E CONF message", in order, from this level up.
    Lines texts(std::int32_t upToLevel = XLOG_INFORMATION) const;

    void clear();

 private:
    XlogLogger previous_;
};

// Turns every level of this process off while it lives. One at a time.
class LogOff {
 public:
    LogOff();
    ~LogOff();
    LogOff(const LogOff&) = delete;
    LogOff& operator=(const LogOff&) = delete;

    // How many lines there would have been, and how many were printed all the same.
    int refused() const;
    int printed() const;

 private:
    XlogLogger previous_;
};

// The messages of a log file's text as "E CONF Helper_bridge message"; a line that has no header
// stands as it is.
Lines logMessages(std::string_view text);

#endif
