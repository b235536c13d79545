#include "shared/OptionParser.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "shared/CommandTree.h"

namespace {

using Words = std::vector<std::string>;

class OptionParserTest : public ::testing::Test {
 protected:
    // Parses a command line of the command "run".
    ParseEnd parse(Words arguments) {
        arguments.insert(arguments.begin(), "run");
        return parser.parse(arguments);
    }

    void expectUnderstood(const Words& arguments) {
        const ParseEnd end = parse(arguments);
        EXPECT_EQ(end.kind, ParseEnd::Understood) << end.text;
    }

    void expectError(const Words& arguments, const std::string& error) {
        const ParseEnd end = parse(arguments);
        EXPECT_EQ(end.kind, ParseEnd::Error);
        EXPECT_EQ(end.text, error);
    }

    ProgramParser parser{"program", "What it is for."};
    OptionParser command = parser.options().addCommand("run", "Run it", "Example: program run", "");
    std::string text;
};

}  // namespace

TEST_F(OptionParserTest, ArgumentsAndOptionsReceiveTheirValues) {
    std::string place;
    unsigned number = 0;
    bool flag = false;
    command.add("PLACE", place, "");
    command.add("--text", text, "");
    command.add("--number", number, "");
    command.addFlag("--flag", flag, "");
    expectUnderstood({"here", "--text", "a b", "--number=7", "--flag"});
    EXPECT_EQ(place, "here");
    EXPECT_EQ(text, "a b");
    EXPECT_EQ(number, 7u);
    EXPECT_TRUE(flag);
}

TEST_F(OptionParserTest, AMissingValueDoesNotChangeTheVariable) {
    std::optional<std::int32_t> number;
    text = "before";
    Option option = command.add("--text", text, "");
    command.add("--number", number, "");
    expectUnderstood({});
    EXPECT_EQ(text, "before");
    EXPECT_FALSE(number);
    EXPECT_FALSE(option.isGiven());
}

TEST_F(OptionParserTest, AnEmptyTextIsGiven) {
    text = "before";
    Option option = command.add("--text", text, "");
    expectUnderstood({"--text", ""});
    EXPECT_EQ(text, "");
    EXPECT_TRUE(option.isGiven());
}

TEST_F(OptionParserTest, ATextMayBeginWithASlash) {
    command.add("TEXT", text, "");
    expectUnderstood({"/folder"});
    EXPECT_EQ(text, "/folder");
}

TEST_F(OptionParserTest, ARequiredArgumentMustBeGiven) {
    command.add("TEXT", text, "").required();
    expectError({}, "TEXT is missing");
}

TEST_F(OptionParserTest, AnOptionCanNeedAnother) {
    bool flag = false;
    Option option = command.add("--text", text, "");
    command.addFlag("--flag", flag, "").needs(option);
    expectError({"--flag"}, "--flag requires --text");
}

TEST_F(OptionParserTest, AnOptionCanExcludeAnother) {
    bool flag = false;
    Option option = command.add("--text", text, "");
    command.addFlag("--flag", flag, "").excludes(option);
    expectError({"--flag", "--text", "a"}, "--text and --flag exclude each other");
}

TEST_F(OptionParserTest, ATextCanBeLimitedToNames) {
    command.add("TEXT", text, "").oneOf({"one", "two"});
    expectUnderstood({"two"});
    EXPECT_EQ(text, "two");
    expectError({"wto"}, "TEXT: must be one of one, two, not \"wto\"");
    EXPECT_EQ(parse({"wto"}).hint, "did you mean two?");
}

TEST_F(OptionParserTest, ANumberCanBeLimitedToARange) {
    unsigned number = 0;
    command.add("--number", number, "").between(2, 5);
    expectUnderstood({"--number", "5"});
    EXPECT_EQ(number, 5u);
    for (const std::string wrong : {"6", "1", "-2", "x", "3x", "4294967299"}) {
        expectError({"--number", wrong}, "--number: must be 2 to 5, not \"" + wrong + "\"");
    }
}

TEST_F(OptionParserTest, APositiveNumberIsNotZero) {
    unsigned number = 0;
    command.add("--number", number, "").positive();
    expectError({"--number", "0"}, "--number: must be 1 or more, not \"0\"");
    expectUnderstood({"--number", "1"});
}

TEST_F(OptionParserTest, AListTakesEveryWord) {
    Words list;
    command.add("LIST", list, "");
    expectUnderstood({"a,b", "c"});
    EXPECT_EQ(list, (Words{"a,b", "c"}));
}

TEST_F(OptionParserTest, AListInOneWordLeavesTheNextWord) {
    Words list;
    command.add("--list", list, "").inOneWord();
    command.add("TEXT", text, "");
    expectUnderstood({"--list", "a,b", "c"});
    EXPECT_EQ(list, (Words{"a", "b"}));
    EXPECT_EQ(text, "c");
}

TEST_F(OptionParserTest, TheActionRunsOnceWithTheValues) {
    Words seen;
    command.add("TEXT", text, "");
    command.onRun([&] { seen.push_back(text); });
    expectUnderstood({"here"});
    EXPECT_EQ(seen, Words{"here"});
}

TEST_F(OptionParserTest, TheActionDoesNotRunAfterAnError) {
    bool hasRun = false;
    command.onRun([&] { hasRun = true; });
    expectError({"--frob"}, "no such option: --frob");
    EXPECT_FALSE(hasRun);
}

TEST_F(OptionParserTest, TheActionsOfOtherCommandsDoNotRun) {
    bool hasRun = false;
    parser.options().addCommand("other", "", "", "").onRun([&] { hasRun = true; });
    expectUnderstood({});
    EXPECT_FALSE(hasRun);
}

TEST_F(OptionParserTest, AnExceptionOfTheActionPasses) {
    command.onRun([] { throw std::runtime_error("full"); });
    EXPECT_THROW(parse({}), std::runtime_error);
}

TEST_F(OptionParserTest, ACommandCanBeRequired) {
    parser.options().requireCommand();
    const ParseEnd end = parser.parse({});
    EXPECT_EQ(end.kind, ParseEnd::Error);
    EXPECT_EQ(end.text, "a command is missing");
}

TEST_F(OptionParserTest, HelpExplainsTheCommandBeforeTheOption) {
    const ParseEnd end = parse({"--help"});
    EXPECT_EQ(end.kind, ParseEnd::Help);
    EXPECT_EQ(end.text,
              "Run it\n\nUsage: program run [OPTION...]\n\nOptions:\n"
              "  -h, --help  Print this help\n\nExample:\n  program run\n");
}

TEST_F(OptionParserTest, HelpHasHeadingsAndDefaults) {
    text = "blue";
    command.add("--colour", text, "Colour").taking("NAME").under("Looks").withDefault();
    EXPECT_NE(parse({"--help"}).text.find("\nLooks:\n  --colour NAME  Colour (default: blue)\n"),
              std::string::npos);
}

TEST_F(OptionParserTest, ErrorsNameTheirCommand) {
    command.add("TEXT", text, "").required();
    EXPECT_EQ(parse({}).command, "program run");
    EXPECT_EQ(parser.parse({"walk"}).command, "program");
}

TEST_F(OptionParserTest, LeftoverWordsAreExplained) {
    const struct {
        Words words;
        const char* error;
        const char* hint;
    } cases[] = {
        {{"run", "--txt"}, "no such option: --txt", "did you mean --text?"},
        {{"run", "--global"}, "no such option: --global", "--global comes before the command"},
        {{"run", "--xy=1"}, "no such option: --xy", ""},
        {{"run", "a"}, "unexpected argument: a", ""},
        {{"run", "--text"}, "--text: the value is missing", ""},
        {{"run", "--text", "a", "--text", "b"}, "--text: is given more than once", ""},
        {{"--gobal"}, "no such option: --gobal", "did you mean --global?"},
        {{"rnu"}, "no such command: rnu", "did you mean run?"},
    };
    bool flag = false;
    parser.options().addFlag("--global", flag, "");
    parser.options().requireCommand();
    command.add("--text", text, "");
    for (const auto& [words, error, hint] : cases) {
        const ParseEnd end = parser.parse(words);
        EXPECT_EQ(end.text, error);
        EXPECT_EQ(end.hint, hint) << error;
    }
}

TEST_F(OptionParserTest, AnArgumentThatBeginsWithADashIsExplained) {
    command.add("TEXT", text, "").required();
    const ParseEnd end = parse({"-x"});
    EXPECT_EQ(end.text, "no such option: -x");
    EXPECT_EQ(end.hint, "an argument that begins with \"-\" comes after \"--\"");
}

TEST_F(OptionParserTest, ANumberMustBeANumber) {
    std::optional<std::int32_t> number;
    command.add("--number", number, "");
    expectUnderstood({"--number", "-5"});
    EXPECT_EQ(number, -5);
    for (const std::string wrong : {"x", "2147483648", "1.5"}) {
        expectError({"--number", wrong},
                    "--number: must be a 32-bit number, not \"" + wrong + "\"");
    }
}

TEST_F(OptionParserTest, VersionShowsItsText) {
    parser.addVersion("program 1.2");
    const ParseEnd end = parser.parse({"--version"});
    EXPECT_EQ(end.kind, ParseEnd::Version);
    EXPECT_EQ(end.text, "program 1.2");
}

TEST_F(OptionParserTest, CommandsAreFoundByTheirNames) {
    const std::optional<OptionParser> found = parser.options().command("run");
    ASSERT_TRUE(found);
    EXPECT_EQ(found->name(), "run");
    EXPECT_EQ(found->parent().name(), "program");
    EXPECT_FALSE(parser.options().command("frob"));
}

TEST_F(OptionParserTest, TheTreeHasAllDeclarations) {
    unsigned number = 0;
    command.add("TEXT", text, "The text").required().oneOf({"one", "two"});
    command.add("--number", number, "The number");
    const CommandNode tree = parser.options().tree();
    EXPECT_EQ(tree.name, "program");
    EXPECT_EQ(tree.summary, "What it is for.");
    ASSERT_EQ(tree.commands.size(), 1u);
    const CommandNode& node = tree.commands[0];
    EXPECT_EQ(node.details, "Example: program run");
    ASSERT_EQ(node.options.size(), 3u);  // --help is the first
    EXPECT_EQ(node.options[1].name, "TEXT");
    EXPECT_TRUE(node.options[1].isPositional);
    EXPECT_TRUE(node.options[1].isRequired);
    EXPECT_EQ(node.options[1].choices, (Words{"one", "two"}));
    EXPECT_EQ(node.options[2].name, "--number");
    EXPECT_EQ(node.options[2].help, "The number");
    EXPECT_TRUE(node.options[2].takesValue);
    EXPECT_FALSE(node.options[2].isRequired);
}

TEST_F(OptionParserTest, ATextCanBeRequiredToBeNonEmpty) {
    command.add("--text", text, "").notEmpty();
    expectUnderstood({"--text", "a"});
    expectError({"--text", ""}, "--text: the value is empty");
}

TEST_F(OptionParserTest, AnOptionThatEndsAtItsEqualsSignDoesNotTakeTheNextWord) {
    text = "before";
    command.add("--text", text, "");
    expectError({"--text=", "next"}, "--text: the value is empty");
    EXPECT_EQ(text, "before");
}

TEST_F(OptionParserTest, AnOptionalNumberCanBeLeftOut) {
    std::optional<unsigned> number;
    command.add("TEXT", text, "").required();
    command.addWithOptionalNumber("--wait", number, "SECONDS", "");
    expectUnderstood({"here"});
    EXPECT_FALSE(number);
    expectUnderstood({"here", "--wait"});
    EXPECT_EQ(number, 0u);
    expectUnderstood({"--wait", "here"});
    EXPECT_EQ(number, 0u) << "the required argument comes first";
    expectUnderstood({"--wait", "7", "here"});
    EXPECT_EQ(number, 7u);
    expectError({"here", "--wait", "0"}, "--wait: must be 1 or more, not \"0\"");
    expectError({"here", "--wait", ""}, "--wait: the value is empty");
}
