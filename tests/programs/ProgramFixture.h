#ifndef TESTS_PROGRAMFIXTURE_H
#define TESTS_PROGRAMFIXTURE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "support/ChildProcess.h"
#include "support/Lines.h"
#include "support/ProductRegistry.h"
#include "support/ProductVersion.h"
#include "support/TempFolder.h"

using Arguments = Lines;

// A program of the product with a data folder for the test.
class ProgramFixture : public ::testing::Test {
 protected:
    explicit ProgramFixture(std::string name) : name_(std::move(name)) {
        data.makeFolder("Logs");
        registry.set("UserDefinedDir", data.path());
    }

    std::string program() const { return productFile(name_ + ".exe"); }

    ChildResult run(const Arguments& arguments) const {
        return runChild(program(), arguments, options);
    }

    // Runs a command that succeeds and prints nothing on standard error.
    std::string output(const Arguments& arguments) const {
        const ChildResult result = run(arguments);
        EXPECT_EQ(result.status, 0u);
        EXPECT_EQ(result.err, "");
        return result.out;
    }

    // Runs a command that fails.
    void expectFailure(const Arguments& arguments, unsigned status,
                       const std::string& error) const {
        const ChildResult result = run(arguments);
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, name_ + ": " + error + "\n");
    }

    // Runs a wrong command line. The hint names the help of the program, or of this command.
    void expectMisuse(const Arguments& arguments, const std::string& error,
                      const std::string& command = {}) const {
        const std::string title = name_ + (command.empty() ? "" : " " + command);
        expectFailure(arguments, 2, error + "\n" + name_ + ": see " + title + " --help");
    }

    TempFolder data;
    ProductRegistry registry;
    ChildOptions options;

 private:
    const std::string name_;
};

// bridgectl, which checks the version of the installed product.
class BridgectlFixture : public ProgramFixture {
 protected:
    BridgectlFixture() : ProgramFixture("bridgectl") { registry.set("Version", kProductVersion); }

    // Installs the stand-ins as the product's programs, with their output in the data folder. They
    // send events to `client` and end after this many seconds without a request.
    void useStandins(const std::string& client, const std::string& seconds) {
        registry.set("InstallDir", standinProgram(""));
        options.environment = {{"QX_STANDIN_OUTPUT", data / "standins.txt"},
                               {"QX_STANDIN_SECONDS", seconds},
                               {"QX_STANDIN_CLIENTS", client}};
    }

    // Starts a command that listens as LogCollector. No later event is missed.
    ChildProcess listen(const Arguments& command) const {
        ChildProcess listener(program(), joined({"--client", "LogCollector"}, command), options);
        EXPECT_EQ(listener.readErrorLine(), "bridgectl: listening on " + kServer);
        return listener;
    }

    // Sends an event from the stand-in: its name and arguments.
    void send(const Arguments& event) const {
        const ChildResult sent =
            runChild(standinProgram("QX-Player.exe"), joined({"--event"}, event), options);
        EXPECT_EQ(sent.status, 0u);
    }

    static Arguments joined(Arguments words, const Arguments& more) {
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    // The lines without the times that they begin with.
    static std::string withoutTimes(const std::string& text) {
        constexpr std::size_t kTimeLength = 30;  // with the space
        std::string result;
        for (std::size_t at = 0; at < text.size();) {
            const std::size_t end = std::min(text.find('\n', at), text.size() - 1) + 1;
            const bool hasTime = text.compare(at, 2, "20") == 0 && end - at >= kTimeLength;
            const std::size_t start = at + (hasTime ? kTimeLength : 0);
            result += text.substr(start, end - start);
            at = end;
        }
        return result;
    }

    const std::string kServer = "vtr_LogCollector_bridge_nvo";
};

#endif
