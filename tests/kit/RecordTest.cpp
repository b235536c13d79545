#include "Record.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

Record sample() {
    Record record;
    record.check.id = "log";
    record.check.decides = "Whether <b> & \"it\"";
    record.check.page = "docs/reference/limits.md";
    record.check.sentence = "it's so";
    record.outcome = Outcome::Failed;
    record.reason = "two\nlines <script>";
    record.error = 0x80000003;
    record.milliseconds = 1042;
    record.raw = "raw/log.txt";
    record.output.tests = {{"A.B", Outcome::Skipped, "no \xff way", 5}};
    record.output.figures = {{"retries", "12"}};
    return record;
}

}  // namespace

TEST(KitRecord, IsALineOfJsonForTheCheckAndOneForEachTest) {
    EXPECT_EQ(
        recordLines(sample()),
        "{\"check\":\"log\",\"decides\":\"Whether <b> & \\\"it\\\"\","
        "\"page\":\"docs/reference/limits.md\",\"sentence\":\"it's so\",\"result\":\"failed\","
        "\"reason\":\"two\\nlines <script>\",\"error\":\"0x80000003\",\"milliseconds\":1042,"
        "\"raw\":\"raw/log.txt\",\"figures\":{\"retries\":\"12\"}}\n"
        "{\"check\":\"log\",\"test\":\"A.B\",\"result\":\"skipped\","
        "\"reason\":\"no \xef\xbf\xbd way\",\"milliseconds\":5}\n");
}

TEST(KitRecord, FactsAreOneObject) {
    EXPECT_EQ(factsText({{"build", "10.0"}, {"Wine", "no"}}),
              "{\n    \"build\": \"10.0\",\n    \"Wine\": \"no\"\n}\n");
}

TEST(KitRecord, NoTextIsMarkupInThePage) {
    EXPECT_EQ(htmlText("<a href='x\"'>&\x01\n"), "&lt;a href=&#39;x&quot;&#39;&gt;&amp;?\n");
    const std::string page = summaryPage({sample()}, {{"<i>", "</td>"}});
    EXPECT_EQ(page.find("<script>"), std::string::npos);
    EXPECT_EQ(page.find("<i>"), std::string::npos);
    EXPECT_NE(page.find("two\nlines &lt;script&gt;\nA.B skipped: no "), std::string::npos);
}

TEST(KitRecord, ThePageHasResultsFiguresTimesAndClaims) {
    const std::string page = summaryPage({sample()}, {{"build", "10.0"}});
    EXPECT_NE(page.find("<p>1 failed</p>"), std::string::npos);
    EXPECT_NE(page.find("<a href=\"raw/log.txt\">failed</a>"), std::string::npos);
    EXPECT_NE(page.find("retries: 12"), std::string::npos);
    EXPECT_NE(page.find("0x80000003"), std::string::npos);
    EXPECT_NE(page.find("1.042 s"), std::string::npos);
    EXPECT_NE(page.find("docs/reference/limits.md: &ldquo;it&#39;s so&rdquo;"), std::string::npos);
    EXPECT_NE(page.find("<td>build</td><td><pre>10.0</pre></td>"), std::string::npos);
}

TEST(KitRecord, ThePageShowsNoTimeAndNoErrorForACheckThatWasNotRun) {
    Record record = sample();
    record.outcome = Outcome::Skipped;
    record.error = 0;
    record.milliseconds = 0;
    record.raw.clear();
    const std::string page = summaryPage({record}, {});
    EXPECT_EQ(page.find("0x00000000"), std::string::npos);
    EXPECT_EQ(page.find("0.000 s"), std::string::npos);
}

TEST(KitRecord, ThePageCountsPassedChecksFirst) {
    std::vector<Record> records(3, sample());
    records[0].outcome = Outcome::NeedsWindows;
    records[1].outcome = Outcome::Passed;
    EXPECT_NE(summaryPage(records, {}).find("<p>1 passed, 1 failed, 1 needs Windows</p>"),
              std::string::npos);
}
