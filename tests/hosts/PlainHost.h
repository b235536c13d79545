#ifndef TESTS_PLAINHOST_H
#define TESTS_PLAINHOST_H

#include "support/ChildProcess.h"
#include "support/LogCapture.h"
#include "support/ProductVersion.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"

using Lines = std::vector<std::string>;
using Script = std::vector<std::string>;

// A script of words that contain no spaces.
Script script(std::string_view words);

// A data folder per test, and hosts that use it as the product's.
class PlainHostTest : public ::testing::Test {
 protected:
    PlainHostTest() { data.makeFolder("Logs"); }

    // Starts the host with a registry that names the data folder, then the script.
    ChildProcess start(const Script& script, const ChildOptions& options = {}) const;

    // The same, and waits for its end.
    ChildResult play(const Script& script, const ChildOptions& options = {}) const;

    // The lines that a script prints. Its status must be 0.
    Lines output(const Script& script) const;
    Lines output(std::string_view words) const { return output(script(words)); }

    // The lines after the "init 0" of a host that is initialised as "Helper" first.
    Lines asHelper(const Script& script) const;
    Lines asHelper(std::string_view words) const { return asHelper(script(words)); }

    // Messages of the product's log, as "I CONF Helper_bridge message".
    Lines log() const { return logMessages(data.read("Logs\\Player.log")); }

    // The same without the three lines of the initialisation.
    Lines logAfterInit() const;

    // Expects the fatal break of a module, "CONF", in one of its files, at the end of the log.
    void expectBreak(const std::string& tag, const std::string& file) const;

    void writeConf(std::string_view content) const { data.write("vantrel.conf", content); }
    std::string confPath() const { return data / "vantrel.conf"; }

    TempFolder data;
    std::string version = kProductVersion;
};

Lines linesOf(std::string_view text);

// The lines of a host before "finished", its last one. Its status must be 0.
Lines linesUpToTheEnd(ChildProcess& host);

Lines with(Lines lines, const Lines& more);

// The bytes in a host's line about a batch, "NAME: handles H, bytes B". Expects no handles.
long bytesOfABatch(const std::string& name, const std::string& line);

#endif
