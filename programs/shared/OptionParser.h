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

// The command line of the programs. Only OptionParser.cpp includes the parser library: it has no
// part that is compiled once, and takes the compiler longer than all else in a command's file.

// An option or argument of a command. Copies stand for the same one, which lives as long as its
// parser. Functions that return an option return this one.
class Option {
 public:
    explicit Option(CLI::Option& option) : option_(&option) {}

    Option required();
    Option needs(Option other);     // is refused without the other
    Option excludes(Option other);  // is refused together with the other
    Option oneOf(const std::vector<std::string>& names);
    Option notEmpty();
    Option positive();
    Option between(unsigned least, unsigned most);

    // Of a list: one word holds all items, separated by commas.
    Option inOneWord();

    // The heading that the help shows it under.
    Option under(const char* heading);

    // The help shows the present value as the default.
    Option withDefault();

    // Whether the command line has it; known once that is parsed.
    bool isGiven() const;

 private:
    Option inRange(unsigned least, unsigned most, const std::string& words);

    CLI::Option* option_;
};

// The options of a program or of one of its commands. Copies stand for the same ones, which live as
// long as the program's parser.
class OptionParser {
 public:
    explicit OptionParser(CLI::App& app) : app_(&app) {}

    // An option ("--count"), or an argument by its place ("INSTANCE"). `value` must live as long as
    // the parser, and stays as it is when the command line has none.
    Option add(const char* name, std::string& value, const char* help);
    Option add(const char* name, unsigned& value, const char* help);
    Option add(const char* name, std::optional<std::string>& value, const char* help);
    Option add(const char* name, std::optional<std::int32_t>& value, const char* help);
    Option add(const char* name, std::vector<std::string>& value, const char* help);

    // An option that may have a number of 1 or more behind it, shown under this name. The value is
    // 0 without the number, and stays as it is without the option.
    Option addWithOptionalNumber(const char* name, std::optional<unsigned>& value,
                                 const char* number, const char* help);

    // An option that is there or not.
    Option addFlag(const char* name, bool& value, const char* help);

    // What happens, inside parse(), when the command line has this command and has no error.
    void onRun(std::function<void()> action);

    // Of a program: what happens, inside parse(), before its command's work.
    void onParsed(std::function<void()> action);

    // A command inside this one. `details` is the end of its help.
    OptionParser addCommand(const char* name, const char* summary, const char* details);

    // One of the commands inside must be given.
    void requireCommand();

    // The command of this name inside this one; nothing when there is none.
    std::optional<OptionParser> command(const std::string& name) const;

    // The program or group that a command is inside of.
    OptionParser parent() const;

    std::string name() const;

    // The help, with `title` as the name in its line of usage.
    std::string help(const std::string& title) const;

    // What has been declared.
    CommandNode tree() const;

 private:
    CLI::App* app_;
};

// How the parsing of a command line ended.
struct ParseEnd {
    enum Kind { Understood, Help, Version, Error };
    Kind kind;
    std::string text;  // help, version or error, without a line feed at the end of the last two
    std::string hint;  // of an error: what was probably meant
    std::string unknownCommand;  // of an error: the command that there is not, "conf frob"
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

    // The end of the program's help.
    void setDetails(const std::string& text);

    // Runs the action of the command that is given. Exceptions of the action pass through.
    ParseEnd parse(const std::vector<std::string>& arguments);

 private:
    const std::unique_ptr<CLI::App> app_;
};

#endif
