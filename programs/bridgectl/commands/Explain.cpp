// bridgectl explain [CODE] [--markdown]
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ResultCodes.h"
#include "Session.h"
#include "shared/Command.h"
#include "shared/Console.h"
#include "shared/JsonValue.h"
#include "shared/Nearest.h"
#include "shared/OptionParser.h"
#include "shared/Table.h"

namespace {

void printAll(Session& session) {
    if (!session.json) {
        session.print(formatTable(resultCodeRows(), outputStyle()));
        return;
    }
    JsonArray array;
    for (const ResultCode& code : resultCodes()) array.push_back(resultCodeJson(code));
    session.printJson(array);
}

std::string hintFor(const std::string& text) {
    std::vector<std::string> names;
    for (const ResultCode& code : resultCodes()) {
        names.push_back(code.name);
        names.push_back(code.name.substr(5));  // without "XERR_"
    }
    return nearestHint(text, names);
}

void printOne(Session& session, const std::string& text) {
    const std::optional<ResultCode> code = findResultCode(text);
    if (!code) {
        session.fail(ExitCode::UnknownName, "no such result code: " + text, hintFor(text));
    } else if (session.json) {
        session.printJson(resultCodeJson(*code));
    } else {
        const std::string name = code->name.empty() ? "" : " " + code->name;
        session.print(std::to_string(code->code) + name + ": " + code->meaning + "\n");
    }
}

void run(Session& session, const std::string* code, bool markdown) {
    if (markdown && !session.json) {
        session.print(resultCodesMarkdown());
    } else if (code == nullptr) {
        printAll(session);
    } else {
        printOne(session, *code);
    }
}

void declare(OptionParser& parser, Session& session) {
    const auto code = std::make_shared<std::string>();
    const auto markdown = std::make_shared<bool>(false);
    Option option = parser.add("CODE", *code, "Number or name (default: list all codes)");
    parser.addFlag("--markdown", *markdown, "Print the table of the reference page")
        .excludes(option);
    parser.onRun([&session, code, markdown, option] {
        run(session, option.isGiven() ? code.get() : nullptr, *markdown);
    });
}

}  // namespace

extern const Command commandExplain;
const Command commandExplain{
    "Diagnosis",
    "",
    "explain",
    "Explain a result code of the library",
    "Example: bridgectl explain 13\n"
    "Example: bridgectl explain XERR_ACCES\n"
    "Example: bridgectl explain -- -1\n"
    "Codes from 100000 on are Windows errors, explained by Windows. A negative number comes\n"
    "after \"--\".",
    declare};
