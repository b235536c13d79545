#ifndef TESTS_BRIDGEADMFIXTURE_H
#define TESTS_BRIDGEADMFIXTURE_H

#include <gtest/gtest.h>

#include <string>

#include "ConfExpectation.h"
#include "ProgramFixture.h"
#include "support/LogCapture.h"

// bridgeadm with a configuration of two instances.
class BridgeadmTest : public ProgramFixture {
 protected:
    BridgeadmTest() : ProgramFixture("bridgeadm") {
        entries["vtr.instance.Nougat64.display_name"] = "Jeux 日本";
        entries["vtr.instance.Nougat64.dpi"] = "320";
        entries["vtr.instance.Nougat32.ram"] = "1024";
        addInstanceDefaults(entries, "Nougat64");
        addInstanceDefaults(entries, "Nougat32");
        write(entries);
    }

    void write(const Entries& content) const { data.write("vantrel.conf", fileText(content)); }
    std::string file() const { return data.read("vantrel.conf"); }

    // Runs a command that fails and does not change the file.
    void expectFailure(const Arguments& arguments, unsigned status,
                       const std::string& error) const {
        const std::string before = file();
        ProgramFixture::expectFailure(arguments, status, error);
        EXPECT_EQ(file(), before);
        EXPECT_FALSE(data.has("vantrel.conf-temp"));
    }

    // The hint of errors about the configuration file.
    std::string fileHint() const {
        return "the file is " + (data / "vantrel.conf") + "; see bridgectl doctor";
    }

    Arguments loggedLines() const { return logMessages(data.read("Logs\\Player.log")); }

    Entries entries = globalDefaults();  // of the file
};

#endif
