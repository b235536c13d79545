#include "PlainHost.h"

namespace {

class InstancesTest : public PlainHostTest {
 protected:
    // The listing of a file with this content.
    std::string listing(std::string_view content) const {
        writeConf(content);
        const ChildResult result = play({"init", "Helper", "instances"});
        EXPECT_EQ(result.status, 0u);
        std::string text;
        for (const char c : result.out) {
            if (c != '\r') text += c;  // the host prints in text mode
        }
        const std::string start = "init 0\ninstances ";
        EXPECT_EQ(text.substr(0, start.size()), start);
        return text.substr(start.size(), text.size() - start.size() - 1);
    }
};

}  // namespace

TEST_F(InstancesTest, NoInstanceIsAnArrayOnTwoLines) { EXPECT_EQ(listing(""), "[\n]\n"); }

TEST_F(InstancesTest, MembersAreSortedAndIndentedByFourBlanks) {
    EXPECT_EQ(listing("vtr.instance.Nougat64.cpus=\"4\"\n"
                      "vtr.instance.Nougat64.device_profile_code=\"s21\"\n"
                      "vtr.instance.Nougat64.display_name=\"Jeux \"é\" 日本\"\n"
                      "vtr.instance.Nougat64.graphics_engine=\"aga\"\n"
                      "vtr.instance.Nougat64.graphics_renderer=\"dx\"\n"
                      "vtr.instance.Nougat64.ram=\"4096\"\n"),
              "[\n"
              "    {\n"
              "        \"cpu\": 4,\n"
              "        \"deviceProfile\": \"s21\",\n"
              "        \"displayName\": \"Jeux \\\"é\\\" 日本\",\n"
              "        \"graphicsEngine\": \"aga\",\n"
              "        \"graphicsRenderer\": \"dx\",\n"
              "        \"imageName\": \"Nougat64\",\n"
              "        \"instance\": \"Nougat64\",\n"
              "        \"ram\": 4096\n"
              "    }\n"
              "]\n");
}

TEST_F(InstancesTest, InstancesComeInByteOrderWithTheirDefaults) {
    const auto object = [](const std::string& name, const std::string& image) {
        return "    {\n        \"cpu\": 0,\n        \"deviceProfile\": \"\",\n"
               "        \"displayName\": \"Vantrel\",\n        \"graphicsEngine\": \"\",\n"
               "        \"graphicsRenderer\": \"\",\n        \"imageName\": \"" +
               image + "\",\n        \"instance\": \"" + name + "\",\n        \"ram\": 0\n    }";
    };
    EXPECT_EQ(listing("vtr.instance.Nougat64_2.dpi=\"1\"\nvtr.instance.Nougat64_10.dpi=\"1\"\n"
                      "vtr.instance.Nougat32.dpi=\"1\"\n"),
              "[\n" + object("Nougat32", "Nougat32") + ",\n" + object("Nougat64_10", "Nougat64") +
                  ",\n" + object("Nougat64_2", "Nougat64") + "\n]\n");
}

TEST_F(InstancesTest, AnInstanceOfAnUnknownImageEndsTheHost) {
    writeConf("vtr.instance.Pie64.dpi=\"1\"\n");
    EXPECT_EQ(play({"init", "Helper", "instances"}).status, kFatalStatus);
    EXPECT_EQ(log()[3].rfind("E UTL Helper_bridge utlGetImageTrait:", 0), 0u) << log()[3];
    expectBreak("UTL", "Source/utl/Utl");
}

TEST_F(InstancesTest, ANewInstanceIsListedBeforeItsCommitAndMissingAfterIt) {
    writeConf("");
    EXPECT_EQ(output({"init", "Helper", "seti32", "vtr.instance.Nougat64.ram", "1", "instances",
                      "commit", "instances"}),
              (Lines{"init 0", "seti32 0", "instances [", "    {", "        \"cpu\": 0,",
                     "        \"deviceProfile\": \"\",", "        \"displayName\": \"Vantrel\",",
                     "        \"graphicsEngine\": \"\",", "        \"graphicsRenderer\": \"\",",
                     "        \"imageName\": \"Nougat64\",", "        \"instance\": \"Nougat64\",",
                     "        \"ram\": 1", "    }", "]", "", "commit 0", "instances [", "]", ""}));
}
