#ifndef SHARED_OPTIONPARSER_H
#define SHARED_OPTIONPARSER_H

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI
struct CommandNode;

// The command line of the programs, parsed by CLI11. Only OptionParser.cpp includes CLI11: it is
// header-only and takes longer to compile than the rest of a command's file.

// An option or positional argument of a command. Copies refer to the same option, which lives as
// long as its parser. Functions that return an Option return this one.
class Option {
 public:
    explicit Option(CLI::Option& option) : option_(&option) {}

    Option required();
    Option needs(Option other);     // an error without the other
    Option excludes(Option other);  // an error together with the other
    Option oneOf(const std::vector<std::string>& names);
    Option notEmpty();
    Option positive();
    Option between(unsigned least, unsigned most);

    // For a list: one word holds all items, separated by commas.
    Option inOneWord();

    // The name of the value in the help: "FILE".
    Option taking(const char* valueName);

    // The heading in the help.
    Option under(const char* heading);

    // Shows the current value in the help as the default.
    Option withDefault();

    // Whether the command line has the option. Valid after parsing.
    bool isGiven() const;

 private:
    Option inRange(unsigned least, unsigned most, const std::string& words);

    CLI::Option* option_;
};

// The options of a program or of one of its commands. Copies refer to the same options, which live
// as long as the program's parser.
class OptionParser {
 public:
    explicit OptionParser(CLI::App& app) : app_(&app) {}

    // An option ("--count") or a positional argument ("INSTANCE"). `value` must outlive the parser.
    // It does not change if the command line does not have the option.
    Option add(const char* name, std::string& value, const char* help);
    Option add(const char* name, unsigned& value, const char* help);
    Option add(const char* name, std::optional<std::string>& value, const char* help);
    Option add(const char* name, std::optional<std::int32_t>& value, const char* help);
    Option add(const char* name, std::vector<std::string>& value, const char* help);

    // An option with an optional number of 1 or more, which the help calls `number`. The value is 0
    // without the number. It does not change without the option.
    Option addWithOptionalNumber(const char* name, std::optional<unsigned>& value,
                                 const char* number, const char* help);

    // An option without a value.
    Option addFlag(const char* name, bool& value, const char* help);

    // Called by parse() if the command line selects this command and has no error.
    void onRun(std::function<void()> action);

    // For a program: called by parse() before the action of its command.
    void onParsed(std::function<void()> action);

    // Adds a subcommand. `details` is the end of its help, in the form that HelpText.h describes.
    // The program's help lists the command in `section`.
    OptionParser addCommand(const char* name, const char* summary, const char* details,
                            const char* section);

    // Makes a missing subcommand an error.
    void requireCommand();

    // The subcommand of this name, if there is one.
    std::optional<OptionParser> command(const std::string& name) const;

    // The program or group that contains this command.
    OptionParser parent() const;

    std::string name() const;

    // Everything declared so far.
    CommandNode tree() const;

 private:
    CLI::App* app_;
};

// How the parsing of a command line ended.
struct ParseEnd {
    enum Kind { Understood, Help, Version, Error };
    Kind kind;
    std::string text;  // help, version or error; the last two without a line feed at the end
    std::string hint;  // for an error: what to do, if that is known
    std::string unknownCommand;  // for an error: the command that does not exist, "conf frob"
    std::string command;         // the innermost command of the line: "program conf get"
};

// Owns the options of a program and of its commands.
class ProgramParser {
 public:
    ProgramParser(const char* name, const char* description);
    ~ProgramParser();
    ProgramParser(const ProgramParser&) = delete;
    ProgramParser& operator=(const ProgramParser&) = delete;

    OptionParser options() { return OptionParser(*app_); }

    // Adds --version, which shows this text.
    void addVersion(const std::string& text);

    // Sets the end of the program's help.
    void setDetails(const std::string& text);

    // Runs the action of the selected command. Exceptions of the action pass through.
    ParseEnd parse(const std::vector<std::string>& arguments);

 private:
    const std::unique_ptr<CLI::App> app_;
};

#endif
