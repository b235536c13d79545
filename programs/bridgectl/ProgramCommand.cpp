#include "ProgramCommand.h"

#include <cstddef>
#include <memory>

#include "shared/ExitCode.h"
#include "shared/OptionParser.h"

namespace {

void run(Session& session, const ProgramTexts& texts, const ProgramCall& call) {
    if (!session.start() || !session.requireInstallFolder()) return;
    const int status = session.timed(call.function, [&] { return call.call(texts); });
    if (status != 0) {
        session.failStatus(ExitCode::Program, "not started", status);
        return;
    }
    session.confirm("started", JsonObject{{"started", true}});
}

}  // namespace

void declareProgram(OptionParser& parser, Session& session,
                    const std::vector<ProgramArgument>& arguments, const ProgramCall& call) {
    const auto texts = std::make_shared<ProgramTexts>(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        parser.add(arguments[i].name, (*texts)[i], arguments[i].help).required();
    }
    parser.onRun([&session, texts, call] { run(session, *texts, call); });
}
