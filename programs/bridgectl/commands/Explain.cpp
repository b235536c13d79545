// bridgectl explain [CODE] [--markdown]
#include <memory>
#include <optional>
#include <string>

#include "ResultCodes.h"
#include "Session.h"
#include "shared/Command.h"
#include "shared/Console.h"
#include "shared/JsonValue.h"
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

void printOne(Session& session, const std::string& text) {
    const std::optional<ResultCode> code = findResultCode(text);
    if (!code) {
        session.fail(ExitCode::UnknownName, "no such result code: " + text);
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
    Option option = parser.add("CODE", *code, "Number or name; without it, all are listed");
    parser.addFlag("--markdown", *markdown, "All, as the table of the document").excludes(option);
    parser.onRun([&session, code, markdown, option] {
        run(session, option.isGiven() ? code.get() : nullptr, *markdown);
    });
}

}  // namespace

extern const Command commandExplain;
const Command commandExplain{
    "", "explain", "Says a result code of the library in words",
    "Example: bridgectl explain 13\n"
    "Codes from 100000 on are Windows errors; the words are the system's then. A negative number\n"
    "comes behind \"--\".",
    declare};
