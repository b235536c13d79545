#include "ProgramCommand.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace {

void run(Session& session, const ProgramTexts& texts, const ProgramCall& call) {
    if (!session.start() || !session.requireInstallFolder()) return;
    const int status = session.timed(call.function, [&] { return call.call(texts); });
    if (status != 0) {
        session.failStatus(ExitCode::Program, "not started", status);
        return;
    }
    session.confirm("started", {{"started", true}});
}

}  // namespace

void declareProgram(CLI::App& parser, Session& session,
                    const std::vector<ProgramArgument>& arguments, const ProgramCall& call) {
    const auto texts = std::make_shared<ProgramTexts>(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        parser.add_option(arguments[i].name, (*texts)[i], arguments[i].help)->required();
    }
    parser.callback([&session, texts, call] { run(session, *texts, call); });
}
