// Completion of command lines.
#include "shared/Completion.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "shared/CompletionScript.h"

namespace {

using Words = std::vector<std::string>;

OptionNode argument(const std::string& name) {
    OptionNode node;
    node.name = name;
    node.isPositional = true;
    return node;
}

OptionNode option(const std::string& name, bool needsValue) {
    OptionNode node;
    node.name = name;
    node.needsValue = needsValue;
    return node;
}

// A program with "get KEY PACKAGE [--to FILE]" and "list [--one]".
CommandNode program() {
    OptionNode choice = argument("SHELL");
    choice.choices = {"bash", "fish"};
    const CommandNode get{
        "get", "", "", {argument("KEY"), argument("PACKAGE"), option("--to", true)}, {}};
    const CommandNode list{"list", "", "", {choice, option("--one", false)}, {}};
    return {"program", "", "", {option("--client", true)}, {get, list}};
}

// A name that shows the arguments of the call.
Words values(const OptionNode& node, const Words& before) {
    std::string name = node.name;
    for (const std::string& word : before) name += "/" + word;
    return {name};
}

Words after(const Words& words) { return completionsAfter(program(), words, values); }

}  // namespace

TEST(Completion, CommandsAndOptionsComeFirst) {
    EXPECT_EQ(after({}), (Words{"get", "list", "--client"}));
}

TEST(Completion, ArgumentsComeInOrder) {
    EXPECT_EQ(after({"get"}), (Words{"KEY", "--to"}));
    EXPECT_EQ(after({"get", "k"}), (Words{"PACKAGE/k", "--to"}));
    EXPECT_EQ(after({"get", "k", "p"}), Words{"--to"});
}

TEST(Completion, TheValueOfAnOptionComesAlone) {
    EXPECT_EQ(after({"--client"}), Words{"--client"});
    EXPECT_EQ(after({"--client", "get"}), (Words{"get", "list", "--client"}));
    EXPECT_EQ(after({"get", "k", "--to"}), Words{"--to/k"});
    EXPECT_EQ(after({"get", "--to", "f"}), (Words{"KEY", "--to"}));
    EXPECT_EQ(after({"get", "--to=f"}), (Words{"KEY", "--to"}));
}

TEST(Completion, ALimitedArgumentHasItsNames) {
    EXPECT_EQ(after({"list"}), (Words{"bash", "fish", "--one"}));
    EXPECT_EQ(after({"list", "--one"}), (Words{"bash", "fish", "--one"}));
}

TEST(Completion, OnlyArgumentsComeAfterTwoDashes) {
    EXPECT_EQ(after({"get", "--"}), Words{"KEY"});
    EXPECT_EQ(after({"get", "--", "--to"}), Words{"PACKAGE/--to"});
}

TEST(Completion, TheScriptsAskTheProgram) {
    EXPECT_EQ(bashCompletion("tool"),
              "# Completion of tool for bash: source this file.\n"
              "_tool() {\n"
              "    local IFS=$'\\n' words\n"
              "    words=$(\"${COMP_WORDS[0]}\" complete -- \"${COMP_WORDS[@]:1:COMP_CWORD-1}\" "
              "2>/dev/null)\n"
              "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- "
              "\"${COMP_WORDS[COMP_CWORD]}\")\n"
              "}\n"
              "complete -o default -F _tool tool tool.exe\n");
    const std::string powershell = powershellCompletion("tool");
    EXPECT_NE(powershell.find("-CommandName 'tool', 'tool.exe'"), std::string::npos);
    EXPECT_NE(powershell.find("& $commandAst.GetCommandName() complete '--' @words"),
              std::string::npos);
    EXPECT_EQ(powershell.find('@' + std::string("PROGRAM")), std::string::npos);
}
