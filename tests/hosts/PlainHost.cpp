#include "PlainHost.h"

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

ChildResult PlainHostTest::play(const Script& script, const ChildOptions& options) const {
    Script all{"sandbox",  "registry", "UserDefinedDir", data.path(),
               "registry", "Version",  version};
    all.insert(all.end(), script.begin(), script.end());
    return runChild(builtProgram("plain_host.exe"), all, options);
}

Lines PlainHostTest::output(const Script& script) const {
    const ChildResult result = play(script);
    EXPECT_EQ(result.status, 0u) << result.out << result.err;
    return linesOf(result.out);
}
