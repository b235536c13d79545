#include "shared/OptionParser.h"

#include <CLI/CLI.hpp>
#include <cstddef>
#include <utility>

#include "shared/CommandTree.h"

namespace {

constexpr const char* kEmpty = "the value is empty";

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

ParseEnd endOf(const CLI::App& app, const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) return {ParseEnd::Error, error.what()};
    if (error.get_name() == "CallForVersion") return {ParseEnd::Version, app.version()};
    return {ParseEnd::Help, app.help()};
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

Option Option::positive() {
    option_->check(CLI::PositiveNumber);
    return *this;
}

Option Option::between(unsigned least, unsigned most) {
    option_->check(CLI::Range(least, most));
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

Option OptionParser::addFlag(const char* name, bool& value, const char* help) {
    return Option(*app_->add_flag(name, value, help));
}

void OptionParser::onRun(std::function<void()> action) { app_->callback(std::move(action)); }

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
        return {ParseEnd::Error, *name + ": " + kEmpty};
    }
    try {
        // The library takes them from the back.
        app_->parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError& error) {
        return endOf(*app_, error);
    }
    return {ParseEnd::Understood, {}};
}
