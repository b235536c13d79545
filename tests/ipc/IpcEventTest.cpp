// The library's table of events, compared with the tests' own and with the public header.
#include "ipc/IpcEvent.h"

#include <regex>

#include "ProtocolPage.h"
#include "support/EventPackets.h"
#include "support/TestHeaders.h"

namespace {

IpcEventFieldType typeOf(char letter) {
    static const std::map<char, IpcEventFieldType> types{
        {'t', IPC_TEXT}, {'i', IPC_I32}, {'d', IPC_DOUBLE}, {'b', IPC_FLAG}};
    return types.at(letter);
}

std::string parameterOf(const IpcEventField& field) {
    static const std::map<IpcEventFieldType, std::string> types{{IPC_TEXT, "const char* "},
                                                                {IPC_I32, "bridge_i32 "},
                                                                {IPC_DOUBLE, "double "},
                                                                {IPC_FLAG, "bridge_bool "}};
    return types.at(field.type) + field.name;
}

// The parameters of each callback type of the header, in one line.
std::map<std::string, std::string> headerCallbacks() {
    static const std::regex declaration(R"(typedef void\(BRIDGE_CALL\* (\w+)\)\(([^)]*)\))");
    static const std::regex blanks(R"(\s+)");
    const std::string header = kBridgeHeader;
    std::map<std::string, std::string> callbacks;
    for (std::sregex_iterator it(header.begin(), header.end(), declaration), end; it != end; ++it) {
        callbacks[(*it)[1]] = std::regex_replace((*it)[2].str(), blanks, " ");
    }
    return callbacks;
}

std::map<std::string, std::string> tableCallbacks() {
    std::map<std::string, std::string> callbacks;
    const auto add = [&callbacks](const std::string& callback, const IpcEvent& event) {
        std::string parameters;
        for (std::size_t i = 0; i < event.fieldCount; ++i) {
            parameters += (i == 0 ? "" : ", ") + parameterOf(event.fields[i]);
        }
        callbacks[callback] = parameters.empty() ? "void" : parameters;
    };
#define ADD(opcode, event, callback, slot, ...) add(#callback, {opcode, __VA_ARGS__});
    IPC_EVENTS(ADD)
#undef ADD
    return callbacks;
}

}  // namespace

TEST(IpcEvent, TheTableIsThatOfTheProtocol) {
    ASSERT_EQ(std::size(IPC_EVENT_ROWS), knownEvents().size());
    for (std::size_t row = 0; row < knownEvents().size(); ++row) {
        const IpcEvent& event = IPC_EVENT_ROWS[row];
        const KnownEvent& known = knownEvents()[row];
        EXPECT_EQ(event.opcode, known.opcode);
        EXPECT_EQ(event.name, known.name);
        ASSERT_EQ(event.fieldCount, known.fields.size()) << known.name;
        for (std::size_t i = 0; i < event.fieldCount; ++i) {
            EXPECT_EQ(event.fields[i].name, known.fields[i].name);
            EXPECT_EQ(event.fields[i].type, typeOf(known.fields[i].type)) << event.fields[i].name;
        }
    }
}

TEST(IpcEvent, TheFieldsAreTheParametersOfTheCallbacksOfTheHeader) {
    EXPECT_EQ(tableCallbacks(), headerCallbacks());
}

// The compiler asks this about each callback.
TEST(IpcEvent, ACallbackTakesAnEventsFieldsInTheirOrderAndOfTheirTypes) {
    const IpcEvent event{
        1, "all", 4, {{"t", IPC_TEXT}, {"i", IPC_I32}, {"d", IPC_DOUBLE}, {"b", IPC_FLAG}}};
    EXPECT_TRUE((ipcTakesFields<const char*, std::int32_t, double, std::uint8_t>(event)));
    EXPECT_FALSE((ipcTakesFields<const char*, std::int32_t, double>(event)));
    EXPECT_FALSE((ipcTakesFields<const char*, std::int32_t, double, double>(event)));
    EXPECT_FALSE((ipcTakesFields<const char*, double, std::int32_t, std::uint8_t>(event)));
    EXPECT_FALSE((ipcTakesFields<const char*, std::int32_t, double, std::uint8_t, double>(event)));
}
