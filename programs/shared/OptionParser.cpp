#include "shared/OptionParser.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstddef>
#include <limits>
#include <system_error>
#include <utility>

#include "shared/CommandTree.h"
#include "shared/Joined.h"
#include "shared/Nearest.h"

namespace {

constexpr const char* kEmpty = "the value is empty";

// What stands for the number of an option that has none.
constexpr const char* kNoNumber = "forever";

bool parseUnsigned(const std::string& text, unsigned& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

// The help shows the names that an option is limited to as "{a,b}" in its type.
std::vector<std::string> choicesOf(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    const std::size_t start = type.find('{');
    const std::size_t end = type.find('}', start);
    if (start == std::string::npos || end == std::string::npos) return {};
    return CLI::detail::split(type.substr(start + 1, end - start - 1), ',');
}

OptionNode optionNode(const CLI::Option& option) {
    OptionNode node;
    node.isPositional = option.get_positional();
    node.name = node.isPositional ? option.get_name(true) : "--" + option.get_lnames().front();
    node.help = option.get_description();
    node.isRequired = option.get_required();
    node.takesValue = option.get_items_expected_max() > 0;
    node.needsValue = option.get_items_expected_min() > 0;
    node.choices = choicesOf(option);
    return node;
}

CommandNode commandNode(const CLI::App& app) {
    CommandNode node{app.get_name(), app.get_description(), app.get_footer(), {}, {}};
    for (const CLI::Option* option : app.get_options()) node.options.push_back(optionNode(*option));
    const auto isAny = [](const CLI::App*) { return true; };
    for (const CLI::App* command : app.get_subcommands(isAny)) {
        node.commands.push_back(commandNode(*command));
    }
    return node;
}

template <typename Value>
Option addOption(CLI::App& app, const char* name, Value& value, const char* help) {
    return Option(*app.add_option(name, value, help));
}

// An option with "=" and nothing behind it, such as a variable that is not set leaves. The parser
// library would take the next word for its value.
std::optional<std::string> emptyOption(const std::vector<std::string>& arguments) {
    for (const std::string& word : arguments) {
        if (word == "--") break;
        if (word.size() > 3 && word.substr(0, 2) == "--" && word.find('=') == word.size() - 1) {
            return word.substr(0, word.size() - 1);
        }
    }
    return std::nullopt;
}

// The command that the line has got to, with the names on the way.
const CLI::App& deepestCommand(const CLI::App& app, std::vector<std::string>& names) {
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
        names.push_back(command->get_name());
    }
    return *command;
}

std::vector<std::string> commandNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CommandNode& command : commandNode(app).commands) names.push_back(command.name);
    return names;
}

std::vector<std::string> optionNames(const CLI::App& app) {
    std::vector<std::string> names;
    for (const OptionNode& option : commandNode(app).options) {
        if (!option.isPositional) names.push_back(option.name);
    }
    return names;
}

// What the library says about a word that it has no place for is no help, or wrong: of a mistyped
// command it says that there is none.
ParseEnd errorOf(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<std::string> rest = app.remaining(/*recurse=*/true);
    std::vector<std::string> names;
    const CLI::App& command = deepestCommand(app, names);
    if (rest.empty()) return {ParseEnd::Error, error.what(), {}, {}};
    const std::string& word = rest.front();
    if (word.substr(0, 1) == "-") {
        return {ParseEnd::Error, error.what(), nearestHint(word, optionNames(command)), {}};
    }
    const std::vector<std::string> possible = commandNames(command);
    if (possible.empty()) return {ParseEnd::Error, error.what(), {}, {}};
    names.push_back(word);
    const std::string wrong = joined(names, " ");
    names.back() = nearestName(word, possible).value_or("");
    const std::string hint = names.back().empty() ? "" : "did you mean " + joined(names, " ") + "?";
    return {ParseEnd::Error, "no such command: " + wrong, hint, wrong};
}

ParseEnd endOf(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) return errorOf(app, error);
    if (error.get_name() == "CallForVersion") return {ParseEnd::Version, app.version(), {}, {}};
    return {ParseEnd::Help, app.help(), {}, {}};
}

}  // namespace

Option Option::required() {
    option_->required();
    return *this;
}

Option Option::needs(Option other) {
    option_->needs(other.option_);
    return *this;
}

Option Option::excludes(Option other) {
    option_->excludes(other.option_);
    return *this;
}

Option Option::oneOf(const std::vector<std::string>& names) {
    option_->check(CLI::IsMember(names));
    return *this;
}

Option Option::notEmpty() {
    option_->check(
        CLI::Validator([](std::string& text) { return text.empty() ? kEmpty : ""; }, ""));
    return *this;
}

Option Option::positive() { return inRange(1, std::numeric_limits<unsigned>::max(), "1 or more"); }

Option Option::between(unsigned least, unsigned most) {
    return inRange(least, most, std::to_string(least) + " to " + std::to_string(most));
}

Option Option::inRange(unsigned least, unsigned most, const std::string& words) {
    const auto check = [least, most, words](std::string& text) {
        unsigned number = 0;
        const bool fits = parseUnsigned(text, number) && number >= least && number <= most;
        return fits ? std::string() : "must be " + words + ", not \"" + text + "\"";
    };
    option_->check(CLI::Validator(check, ""));
    option_->type_name("NUMBER")->description(option_->get_description() + ", " + words);
    return *this;
}

Option Option::inOneWord() {
    option_->delimiter(',')->allow_extra_args(false);
    return *this;
}

Option Option::under(const char* heading) {
    option_->group(heading);
    return *this;
}

Option Option::withDefault() {
    option_->capture_default_str();
    return *this;
}

bool Option::isGiven() const { return option_->count() > 0; }

Option OptionParser::add(const char* name, std::string& value, const char* help) {
    return addOption(*app_, name, value, help);
}

Option OptionParser::add(const char* name, unsigned& value, const char* help) {
    return addOption(*app_, name, value, help);
}

Option OptionParser::add(const char* name, std::optional<std::string>& value, const char* help) {
    return addOption(*app_, name, value, help);
}

Option OptionParser::add(const char* name, std::optional<std::int32_t>& value, const char* help) {
    return addOption(*app_, name, value, help);
}

Option OptionParser::add(const char* name, std::vector<std::string>& value, const char* help) {
    return addOption(*app_, name, value, help);
}

Option OptionParser::addWithOptionalNumber(const char* name, std::optional<unsigned>& value,
                                           const char* number, const char* help) {
    const auto take = [name, &value](const CLI::results_t& results) {
        value = 0;
        if (results.front() == kNoNumber) return true;
        if (results.front().empty()) throw CLI::ValidationError(name, kEmpty);
        if (parseUnsigned(results.front(), *value) && *value > 0) return true;
        throw CLI::ValidationError(name, "must be 1 or more, not \"" + results.front() + "\"");
    };
    CLI::Option* const option = app_->add_option(name, take, help);
    option->expected(0, 1)->default_str(kNoNumber)->type_name(number);
    return Option(*option);
}

Option OptionParser::addFlag(const char* name, bool& value, const char* help) {
    return Option(*app_->add_flag(name, value, help));
}

void OptionParser::onRun(std::function<void()> action) { app_->callback(std::move(action)); }

void OptionParser::onParsed(std::function<void()> action) {
    app_->parse_complete_callback(std::move(action));
}

OptionParser OptionParser::addCommand(const char* name, const char* summary, const char* details) {
    CLI::App* const command = app_->add_subcommand(name, summary);
    command->footer(details);
    return OptionParser(*command);
}

void OptionParser::requireCommand() { app_->require_subcommand(1); }

std::optional<OptionParser> OptionParser::command(const std::string& name) const {
    const auto found = app_->get_subcommands(
        [&name](const CLI::App* command) { return command->get_name() == name; });
    if (found.empty()) return std::nullopt;
    return OptionParser(*found.front());
}

OptionParser OptionParser::parent() const { return OptionParser(*app_->get_parent()); }

std::string OptionParser::name() const { return app_->get_name(); }

std::string OptionParser::help(const std::string& title) const {
    // Not the library's help(), which would explain the command that runs: this one.
    return app_->get_formatter()->make_help(app_, title, CLI::AppFormatMode::Normal);
}

CommandNode OptionParser::tree() const { return commandNode(*app_); }

ProgramParser::ProgramParser(const char* name, const char* description)
    : app_(std::make_unique<CLI::App>(description, name)) {
    app_->allow_windows_style_options(false);  // texts may begin with "/"
}

ProgramParser::~ProgramParser() = default;

void ProgramParser::addVersion(const std::string& text) {
    app_->set_version_flag("--version", text);
}

void ProgramParser::setDetails(const std::string& text) { app_->footer(text); }

ParseEnd ProgramParser::parse(const std::vector<std::string>& arguments) {
    if (const auto name = emptyOption(arguments)) {
        return {ParseEnd::Error, *name + ": " + kEmpty, {}, {}};
    }
    try {
        // The library takes them from the back.
        app_->parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError& error) {
        return endOf(*app_, error);
    }
    return {ParseEnd::Understood, {}, {}, {}};
}
