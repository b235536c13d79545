#ifndef TESTS_BRIDGEADMFIXTURE_H
#define TESTS_BRIDGEADMFIXTURE_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ConfExpectation.h"
#include "support/ChildProcess.h"
#include "support/LogCapture.h"
#include "support/ProductRegistry.h"
#include "support/TempFolder.h"

using Arguments = std::vector<std::string>;

// The program over a data folder with a configuration of two instances.
class BridgeadmTest : public ::testing::Test {
 protected:
    BridgeadmTest() {
        data.makeFolder("Logs");
        registry.set("UserDefinedDir", data.path());
        entries["vtr.instance.Nougat64.display_name"] = "Jeux 日本";
        entries["vtr.instance.Nougat64.dpi"] = "320";
        entries["vtr.instance.Nougat32.ram"] = "1024";
        addInstanceDefaults(entries, "Nougat64");
        addInstanceDefaults(entries, "Nougat32");
        write(entries);
    }

    void write(const Entries& content) const { data.write("vantrel.conf", fileText(content)); }
    std::string file() const { return data.read("vantrel.conf"); }

    static ChildResult run(const Arguments& arguments) {
        return runChild(productFile("bridgeadm.exe"), arguments);
    }

    // Runs a command that succeeds and says nothing on standard error.
    static std::string output(const Arguments& arguments) {
        const ChildResult result = run(arguments);
        EXPECT_EQ(result.status, 0u);
        EXPECT_EQ(result.err, "");
        return result.out;
    }

    // Runs one that fails and leaves the file alone.
    void expectFailure(const Arguments& arguments, unsigned status,
                       const std::string& error) const {
        const std::string before = file();
        const ChildResult result = run(arguments);
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "bridgeadm: " + error + "\n");
        EXPECT_EQ(file(), before);
        EXPECT_FALSE(data.has("vantrel.conf-temp"));
    }

    Arguments loggedLines() const { return logMessages(data.read("Logs\\Player.log")); }

    TempFolder data;
    ProductRegistry registry;
    Entries entries = globalDefaults();  // what the file holds
};

#endif
