#include "PlainHost.h"

#include "support/LogLines.h"

Lines linesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        std::string line(text.substr(0, text.find('\n')));
        text.remove_prefix(std::min(text.size(), line.size() + 1));
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

Lines linesUpToTheEnd(ChildProcess& host) {
    const ChildResult result = host.finish();
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(result.err, "");
    Lines lines = linesOf(result.out);
    EXPECT_EQ(lines.empty() ? "" : lines.back(), "finished") << result.out;
    if (!lines.empty()) lines.pop_back();
    return lines;
}

Lines with(Lines lines, const Lines& more) {
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

Script script(std::string_view words) {
    std::istringstream stream{std::string(words)};
    return {std::istream_iterator<std::string>(stream), {}};
}

ChildProcess PlainHostTest::start(const Script& script, const ChildOptions& options) const {
    const Script registry{"sandbox",  "registry", "UserDefinedDir", data.path(),
                          "registry", "Version",  version};
    return {builtProgram("plain_host.exe"), with(registry, script), options};
}

ChildResult PlainHostTest::play(const Script& script, const ChildOptions& options) const {
    return start(script, options).finish();
}

Lines PlainHostTest::output(const Script& script) const {
    const ChildResult result = play(script);
    EXPECT_EQ(result.status, 0u) << result.out << result.err;
    return linesOf(result.out);
}

Lines PlainHostTest::asHelper(const Script& script) const {
    Lines lines = output(with({"init", "Helper"}, script));
    EXPECT_EQ(lines.empty() ? "" : lines[0], "init 0");
    if (!lines.empty()) lines.erase(lines.begin());
    return lines;
}

Lines PlainHostTest::logAfterInit() const {
    Lines lines = log();
    EXPECT_GE(lines.size(), 3u);
    if (lines.size() >= 3) lines.erase(lines.begin(), lines.begin() + 3);
    return lines;
}

void PlainHostTest::expectBreak(const std::string& tag, const std::string& file) const {
    const Lines lines = log();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(logged::withoutNumber(lines.back()), logged::breakOfHelper(tag, file));
}

long bytesOfABatch(const std::string& name, const std::string& line) {
    long handles = -1;
    long bytes = -1;
    EXPECT_EQ(line.compare(0, name.size(), name), 0) << line;
    const std::string figures = line.substr(std::min(line.size(), name.size()));
    EXPECT_EQ(std::sscanf(figures.c_str(), ": handles %ld, bytes %ld", &handles, &bytes), 2)
        << line;
    EXPECT_LE(handles, 0);
    return bytes;
}
