// bridgeadm remove-instance NAME
#include <memory>
#include <string>

#include "Session.h"
#include "conf/Conf.h"
#include "shared/Command.h"
#include "shared/OptionParser.h"

namespace {

void run(Session& session, const std::string& instance) {
    if (!session.startWithConfiguration() || !session.requireInstance(instance)) return;
    confDeleteInstance(session.store(), instance);
    if (!session.commit()) return;
    session.print("removed the settings of " + instance + "\n");
}

void declare(OptionParser& parser, Session& session) {
    const auto instance = std::make_shared<std::string>();
    parser.add("NAME", *instance, "Instance to remove").required();
    parser.onRun([&session, instance] { run(session, *instance); });
}

}  // namespace

extern const Command commandRemoveInstance;
const Command commandRemoveInstance{
    "Instances",
    "",
    "remove-instance",
    "Remove the settings of an instance",
    "Example: bridgeadm remove-instance Nougat64_1\n"
    "The instance's other files stay. Close its player first: a program that has loaded the\n"
    "instance writes the settings back with its next commit.",
    declare};
