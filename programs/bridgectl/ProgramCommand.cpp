#include "ProgramCommand.h"

#include <CLI/CLI.hpp>

#include "Console.h"

namespace {

void run(Session& session, const ProgramTexts& texts, ProgramCall call) {
    if (!session.start() || !session.requireInstallFolder()) return;
    const int status = call(texts);
    if (status != 0) {
        session.failStatus(ExitCode::Program, "not started", status);
        return;
    }
    printOut("started\n");
}

}  // namespace

void declareProgram(CLI::App& parser, Session& session,
                    const std::vector<ProgramArgument>& arguments, ProgramCall call) {
    const auto texts = std::make_shared<ProgramTexts>(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        parser.add_option(arguments[i].name, (*texts)[i], arguments[i].help)->required();
    }
    parser.callback([&session, texts, call] { run(session, *texts, call); });
}
