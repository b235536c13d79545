#ifndef TESTS_PLAINHOST_H
#define TESTS_PLAINHOST_H

#include "support/ChildProcess.h"
#include "support/LogCapture.h"
#include "support/ProductVersion.h"
#include "support/TempFolder.h"
#include "support/TestHeaders.h"

using Lines = std::vector<std::string>;
using Script = std::vector<std::string>;

// A script of words without blanks in them.
Script script(std::string_view words);

// A data folder of the test's own, and hosts that see it as the product's.
class PlainHostTest : public ::testing::Test {
 protected:
    PlainHostTest() { data.makeFolder("Logs"); }

    // Runs the host with a registry that names the data folder, then the script.
    ChildResult play(const Script& script, const ChildOptions& options = {}) const;

    // Starts it, and leaves the rest to the test.
    ChildProcess start(const Script& script, const ChildOptions& options = {}) const;

    // The lines that a script prints, up to the status 0 that is expected.
    Lines output(const Script& script) const;

    // Messages of the product's log, as "I CONF Helper_bridge message".
    Lines log() const { return logMessages(data.read("Logs\\Player.log")); }

    // That log must end with the fatal break of a module, "CONF", in a file of it.
    void expectBreak(const std::string& tag, const std::string& file) const;

    void writeConf(std::string_view content) const { data.write("vantrel.conf", content); }
    std::string confPath() const { return data / "vantrel.conf"; }

    TempFolder data;
    std::string version = kProductVersion;
};

Lines linesOf(std::string_view text);

// What a line of the host, "NAME: handles H, bytes B", says of a batch; no handles.
long bytesOfABatch(const std::string& name, const std::string& line);

#endif
