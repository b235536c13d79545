#ifndef TESTS_PROGRAMFIXTURE_H
#define TESTS_PROGRAMFIXTURE_H

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "support/ChildProcess.h"
#include "support/Lines.h"
#include "support/ProductRegistry.h"
#include "support/ProductVersion.h"
#include "support/TempFolder.h"

using Arguments = Lines;

// A program of the product over a data folder of the test's own.
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

    // Runs a command that succeeds and says nothing on standard error.
    std::string output(const Arguments& arguments) const {
        const ChildResult result = run(arguments);
        EXPECT_EQ(result.status, 0u);
        EXPECT_EQ(result.err, "");
        return result.out;
    }

    // Runs one that fails.
    void expectFailure(const Arguments& arguments, unsigned status,
                       const std::string& error) const {
        const ChildResult result = run(arguments);
        EXPECT_EQ(result.status, status);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, name_ + ": " + error + "\n");
    }

    TempFolder data;
    ProductRegistry registry;
    ChildOptions options;

 private:
    const std::string name_;
};

// The same for bridgectl, which looks at the version of what is installed.
class BridgectlFixture : public ProgramFixture {
 protected:
    BridgectlFixture() : ProgramFixture("bridgectl") { registry.set("Version", kProductVersion); }

    // Puts the stand-ins in place of the product's programs, with their output in the data folder.
    // They end after so many seconds without a request.
    void useStandins(const std::string& client, const std::string& seconds) {
        registry.set("InstallDir", standinProgram(""));
        options.environment = {{"QX_STANDIN_OUTPUT", data / "standins.txt"},
                               {"QX_STANDIN_SECONDS", seconds},
                               {"QX_STANDIN_CLIENTS", client}};
    }
};

#endif
