#include "support/RegistrySandbox.h"
#include "support/TestHeaders.h"
#include "utl/UtlRegistry.h"

namespace {

class UtlRegistry : public ::testing::Test {
 protected:
    static std::string read(const std::string& name) {
        return utlRegistryString(UtlRegistryRoot::LocalMachine, UTL_PRODUCT_KEY, name, "default");
    }

    RegistrySandbox registry;
};

}  // namespace

TEST_F(UtlRegistry, ReadsAText) {
    registry.set("Version", "1.2");
    EXPECT_EQ(read("Version"), "1.2");
}

TEST_F(UtlRegistry, ReadsNonAsciiTextAsUtf8) {
    registry.set("InstallDir", "C:\\Prógrams\\日本語\\");
    EXPECT_EQ(read("InstallDir"), "C:\\Prógrams\\日本語\\");
}

TEST_F(UtlRegistry, AMissingKeyReadsAsTheDefault) { EXPECT_EQ(read("Version"), "default"); }

TEST_F(UtlRegistry, AMissingValueReadsAsTheDefault) {
    registry.set("Version", "1");
    EXPECT_EQ(read("Other"), "default");
}

TEST_F(UtlRegistry, AnEmptyTextIsNotMissing) {
    registry.set("Version", "");
    EXPECT_EQ(read("Version"), "");
}

TEST_F(UtlRegistry, ALongTextIsReadWhole) {
    const std::string text(20'000, 'x');
    registry.set("Version", text);
    EXPECT_EQ(read("Version"), text);
}

TEST_F(UtlRegistry, NamesThatAreNotUtf8ReadAsTheDefault) {
    registry.set("Version", "abc");
    EXPECT_EQ(read("Version\xFF"), "default");
    EXPECT_EQ(utlRegistryString(UtlRegistryRoot::LocalMachine,
                                std::string(UTL_PRODUCT_KEY) + "\xFF", "Version", "default"),
              "default");
}
