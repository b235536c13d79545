#include "PlainHost.h"

namespace {

class InstancesTest : public PlainHostTest {
 protected:
    // The listing of a file with this content.
    std::string listing(std::string_view content) const {
        writeConf(content);
        const std::string text = joined(asHelper("instances"));
        const std::string start = "instances ";
        EXPECT_EQ(text.substr(0, start.size()), start);
        EXPECT_EQ(text.substr(text.size() - 2), "\n\n") << "the listing's, and the host's";
        return text.substr(start.size(), text.size() - start.size() - 1);
    }

    static std::string joined(const Lines& lines) {
        std::string text;
        for (const std::string& line : lines) text += line + "\n";
        return text;
    }

    // An instance without properties except its memory.
    static std::string object(const std::string& name, const std::string& image,
                              const std::string& ram = "0") {
        return "    {\n        \"cpu\": 0,\n        \"deviceProfile\": \"\",\n"
               "        \"displayName\": \"Vantrel\",\n        \"graphicsEngine\": \"\",\n"
               "        \"graphicsRenderer\": \"\",\n        \"imageName\": \"" +
               image + "\",\n        \"instance\": \"" + name + "\",\n        \"ram\": " + ram +
               "\n    }";
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
    EXPECT_EQ(listing("vtr.instance.Nougat64_2.dpi=\"1\"\nvtr.instance.Nougat64_10.dpi=\"1\"\n"
                      "vtr.instance.Nougat32.dpi=\"1\"\n"),
              "[\n" + object("Nougat32", "Nougat32") + ",\n" + object("Nougat64_10", "Nougat64") +
                  ",\n" + object("Nougat64_2", "Nougat64") + "\n]\n");
}

TEST_F(InstancesTest, AnInstanceOfAnUnknownImageEndsTheHost) {
    writeConf("vtr.instance.Pie64.dpi=\"1\"\n");
    EXPECT_EQ(play(script("init Helper instances")).status, kFatalStatus);
    EXPECT_EQ(log()[3].rfind("E UTL Helper_bridge utlGetImageTrait:", 0), 0u) << log()[3];
    expectBreak("UTL", "Source/utl/Utl");
}

TEST_F(InstancesTest, ANewInstanceIsListedBeforeItsCommitAndMissingAfterIt) {
    writeConf("");
    EXPECT_EQ(joined(asHelper("seti32 vtr.instance.Nougat64.ram 1 instances commit instances")),
              "seti32 0\ninstances [\n" + object("Nougat64", "Nougat64", "1") +
                  "\n]\n\ncommit 0\ninstances [\n]\n\n");
}
