// The rows and examples of docs/reference/protocol.md, and what the library sends and reads.
#include <regex>

#include "KnownRequests.h"
#include "ProtocolPage.h"
#include "ipc/IpcEvent.h"
#include "support/TestHeaders.h"

namespace {

// The bytes of each request on the page, by its example.
std::map<std::string, std::string> pageExamples() {
    static const std::regex row(
        R"(\| \d+ \| [^|]* \| `([a-z]+[A-Za-z]*Rpc\([^`]*\))` \| `([0-9A-F ]+)` \|)");
    const std::string page = kProtocolPage;
    std::map<std::string, std::string> rows;
    for (std::sregex_iterator it(page.begin(), page.end(), row), end; it != end; ++it) {
        rows[(*it)[1]] = (*it)[2];
    }
    return rows;
}

// An event's row of the page.
struct EventRow {
    std::string opcode;
    std::string fields;
    Words example;  // the first one is the event's name
    std::string bytes;
};

std::vector<EventRow> pageEvents() {
    static const std::regex row(R"(\| (3\d+) \| ([^|]*) \| `([^`]*)` \| `([0-9A-F ]+)` \|)");
    const std::string page = kProtocolPage;
    std::vector<EventRow> rows;
    for (std::sregex_iterator it(page.begin(), page.end(), row), end; it != end; ++it) {
        std::istringstream words((*it)[3]);
        rows.push_back(
            {(*it)[1], (*it)[2], {std::istream_iterator<std::string>(words), {}}, (*it)[4]});
    }
    return rows;
}

// The fields of an event as the page lists them.
std::string fieldList(const IpcEvent& event) {
    static const std::map<IpcEventFieldType, std::string> types{
        {IPC_TEXT, "text"}, {IPC_I32, "i32"}, {IPC_DOUBLE, "double"}, {IPC_FLAG, "flag"}};
    std::string list;
    for (std::size_t i = 0; i < event.fieldCount; ++i) {
        list += list.empty() ? "" : ", ";
        list += types.at(event.fields[i].type) + " " + event.fields[i].name;
    }
    return list.empty() ? "none" : list;
}

std::string hexOf(const std::string& bytes) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (!text.empty()) text += ' ';
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

// The values of an example: plrLaunchAppStoreRpc("a", "b") has the words a and b.
Words valuesOf(const std::string& example) {
    static const std::regex value(R"re("([^"]*)"|[^"(), ]+)re");
    const std::string list = example.substr(example.find('('));
    Words words;
    for (std::sregex_iterator it(list.begin(), list.end(), value), end; it != end; ++it) {
        const std::string word = (*it)[1].matched ? (*it)[1].str() : it->str();
        words.push_back(word == "true" ? "1" : word == "false" ? "0" : word);
    }
    return words;
}

}  // namespace

TEST(ProtocolPage, EveryExampleIsWhatTheLibrarySends) {
    const auto examples = pageExamples();
    ASSERT_EQ(examples.size(), 22u);
    std::set<std::string> names;
    for (const auto& [example, bytes] : examples) {
        const KnownRequest& request = knownRequest(example.substr(0, example.find('(')));
        names.insert(request.name);
        EXPECT_EQ(hexOf(sentBytes(request, valuesOf(example))), bytes) << example;
    }
    EXPECT_EQ(names.size(), examples.size());
}

TEST(ProtocolPage, EveryEventHasTheFieldsThatTheLibraryReads) {
    const std::vector<EventRow> rows = pageEvents();
    ASSERT_EQ(rows.size(), std::size(IPC_EVENT_ROWS));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].opcode, std::to_string(IPC_EVENT_ROWS[i].opcode));
        EXPECT_EQ(rows[i].example.at(0), IPC_EVENT_ROWS[i].name);
        EXPECT_EQ(rows[i].fields, fieldList(IPC_EVENT_ROWS[i]));
    }
}

TEST(ProtocolPage, TheBytesOfEveryEventAreThoseOfItsValues) {
    for (const EventRow& row : pageEvents()) {
        const KnownEvent& event = knownEvent(row.example.at(0));
        const Words values(row.example.begin() + 1, row.example.end());
        EXPECT_EQ(row.bytes, hexOf(eventPacket(event, values))) << event.name;
    }
}
