// The help of commands, for a terminal and for the reference page.
#include "shared/HelpText.h"

#include <gtest/gtest.h>

#include <string>

namespace {

OptionNode flag(const std::string& name, const std::string& help) {
    OptionNode node;
    node.name = name;
    node.help = help;
    node.heading = "Options";
    return node;
}

OptionNode option(const std::string& name, const std::string& value, const std::string& help) {
    OptionNode node = flag(name, help);
    node.takesValue = true;
    node.needsValue = true;
    node.valueName = value;
    return node;
}

OptionNode argument(const std::string& name, const std::string& help, bool isRequired) {
    OptionNode node = option(name, "TEXT", help);
    node.isPositional = true;
    node.isRequired = isRequired;
    return node;
}

CommandNode program() {
    OptionNode shell = option("--shell", "NAME", "Shell");
    shell.choices = {"bash", "fish"};
    shell.defaultText = "bash";
    OptionNode help = flag("--help", "Print this help");
    help.shortName = "-h";
    CommandNode get{
        "get",
        "Print a value",
        "Example: tool conf get a\nA first note\nwith two lines.\n\nA second note:\n"
        "  0  kept as it is",
        {argument("KEY", "Key", true), argument("REST", "More keys", false), help, shell},
        {}};
    get.options[1].isList = true;
    CommandNode conf{"conf", "Read keys", "", {}, {get}};
    conf.section = "Keys";
    conf.commands[0].section = "Keys";
    CommandNode run{"run", "Run it", "", {}, {}};
    run.section = "Work";
    return {"tool", "Do things", "", {help}, {conf, run}};
}

}  // namespace

TEST(HelpText, AProgramListsItsCommandsInSections) {
    EXPECT_EQ(helpText(program(), "tool"),
              "Do things\n\nUsage: tool [OPTION...] COMMAND [ARGUMENT...]\n\n"
              "Keys:\n  conf get    Print a value\n\n"
              "Work:\n  run         Run it\n\n"
              "Options:\n  -h, --help  Print this help\n");
}

TEST(HelpText, AGroupListsItsCommands) {
    EXPECT_EQ(helpText(program().commands[0], "tool conf"),
              "Read keys\n\nUsage: tool conf [OPTION...] COMMAND [ARGUMENT...]\n\n"
              "Commands:\n  get  Print a value\n");
}

TEST(HelpText, ACommandExplainsItsArgumentsAndOptions) {
    EXPECT_EQ(helpText(program().commands[0].commands[0], "tool conf get"),
              "Print a value\n\nUsage: tool conf get [OPTION...] KEY [REST...]\n\n"
              "Arguments:\n  KEY           Key\n  REST          More keys\n\n"
              "Options:\n  -h, --help    Print this help\n"
              "  --shell NAME  Shell: bash, fish (default: bash)\n\n"
              "Example:\n  tool conf get a\n\n"
              "A first note with two lines.\n\nA second note:\n  0  kept as it is\n");
}

TEST(HelpText, TwoExamplesHaveAPluralHeading) {
    EXPECT_EQ(helpText({"a", "A", "Example: a 1\nExample: a 2", {}, {}}, "a"),
              "A\n\nUsage: a [OPTION...]\n\nExamples:\n  a 1\n  a 2\n");
}

TEST(HelpText, LinesHaveAtMost80Columns) {
    const std::string words = "12345678 日本語x 12345678 12345678 12345678 12345678";
    EXPECT_EQ(helpText({"a", "A", words + " " + words, {option("--name", "TEXT", words)}, {}}, "a"),
              "A\n\nUsage: a [OPTION...]\n\nOptions:\n"
              "  --name TEXT  12345678 日本語x 12345678 12345678 12345678 12345678\n\n"
              "12345678 日本語x 12345678 12345678 12345678 12345678 12345678 日本語x 12345678\n"
              "12345678 12345678 12345678\n");
}

TEST(HelpText, ALongLabelHasItsTextInTheNextLine) {
    OptionNode wait = option("--wait-for-a-very-long-time", "SECONDS", "Wait");
    wait.needsValue = false;
    EXPECT_EQ(helpText({"a", "A", "", {wait, flag("--b", "B")}, {}}, "a"),
              "A\n\nUsage: a [OPTION...]\n\nOptions:\n"
              "  --wait-for-a-very-long-time [SECONDS]\n       Wait\n  --b  B\n");
}

TEST(HelpText, ThePageHasASectionForEachCommandWithoutTheProgramsOptions) {
    EXPECT_EQ(
        helpMarkdown(program()),
        "## tool\n\nDo things.\n\n"
        "```text\ntool [OPTION...] COMMAND [ARGUMENT...]\n```\n\n"
        "| Keys | |\n|---|---|\n| `conf get` | Print a value |\n\n"
        "| Work | |\n|---|---|\n| `run` | Run it |\n\n"
        "| Options | |\n|---|---|\n| `-h, --help` | Print this help |\n\n"
        "### tool conf get\n\nPrint a value.\n\n"
        "```text\ntool conf get [OPTION...] KEY [REST...]\n```\n\n"
        "| Arguments | |\n|---|---|\n| `KEY` | Key |\n| `REST` | More keys |\n\n"
        "| Options | |\n|---|---|\n"
        "| `--shell NAME` | Shell: bash, fish (default: bash) |\n\n"
        "Example:\n\n```text\ntool conf get a\n```\n\n"
        "A first note with two lines.\n\nA second note:\n\n```text\n  0  kept as it is\n```\n\n"
        "### tool run\n\nRun it.\n\n```text\ntool run [OPTION...]\n```\n");
}
