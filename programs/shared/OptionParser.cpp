#include "shared/OptionParser.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>
#include <system_error>
#include <utility>

#include "shared/CommandTree.h"
#include "shared/HelpText.h"
#include "shared/Joined.h"
#include "shared/Nearest.h"

namespace {

constexpr const char* kEmpty = "the value is empty";

// What CLI11 stores for an option without its optional number.
constexpr const char* kNoNumber = "forever";

bool parseUnsigned(const std::string& text, unsigned& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

// A check without a name, which CLI11 would show in the option's type.
CLI::Validator check(const std::function<std::string(std::string&)>& find) {
    return CLI::Validator(find, "");
}

// The choices of an option, from its type: "TEXT:{a,b}".
std::vector<std::string> choicesOf(const std::string& type) {
    const std::size_t start = type.find('{');
    if (start == std::string::npos) return {};
    return CLI::detail::split(type.substr(start + 1, type.find('}') - start - 1), ',');
}

OptionNode optionNode(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    OptionNode node;
    node.isPositional = option.get_positional();
    node.name = node.isPositional ? option.get_name(true) : "--" + option.get_lnames().front();
    node.help = option.get_description();
    node.isRequired = option.get_required();
    node.takesValue = option.get_items_expected_max() > 0;
    node.needsValue = option.get_items_expected_min() > 0;
    node.choices = choicesOf(type);
    node.isList = option.get_items_expected_max() > 1;
    if (!option.get_snames().empty()) node.shortName = "-" + option.get_snames().front();
    if (node.takesValue) node.valueName = type.substr(0, type.find(':'));
    if (node.needsValue) node.defaultText = option.get_default_str();
    node.heading = option.get_group();
    return node;
}

CommandNode commandNode(const CLI::App& app) {
    CommandNode node{app.get_name(), app.get_description(), app.get_footer(), {}, {}};
    node.section = app.get_group();
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

// An option with nothing after its "=", as an empty shell variable leaves it. CLI11 would take the
// next word as its value.
std::optional<std::string> emptyOption(const std::vector<std::string>& arguments) {
    for (const std::string& word : arguments) {
        if (word == "--") break;
        if (word.size() > 3 && word.substr(0, 2) == "--" && word.find('=') == word.size() - 1) {
            return word.substr(0, word.size() - 1);
        }
    }
    return std::nullopt;
}

// The innermost command of the line, and the names that lead to it.
const CLI::App& innermostCommand(const CLI::App& app, std::vector<std::string>& names) {
    const CLI::App* command = &app;
    while (!command->get_subcommands().empty()) {
        command = command->get_subcommands().front();
        names.push_back(command->get_name());
    }
    return *command;
}

template <typename Nodes>
std::vector<std::string> namesOf(const Nodes& nodes) {
    std::vector<std::string> names;
    for (const auto& node : nodes) names.push_back(node.name);
    return names;
}

bool isOption(const std::string& word) { return word.size() > 1 && word.front() == '-'; }

bool hasArguments(const CommandNode& command) {
    return std::any_of(command.options.begin(), command.options.end(),
                       [](const OptionNode& option) { return option.isPositional; });
}

ParseEnd unknownOption(const CLI::App& app, const CLI::App& command, const std::string& word) {
    const std::string name = word.substr(0, word.find('='));
    const std::vector<std::string> global = namesOf(commandNode(app).options);
    const CommandNode node = commandNode(command);
    std::string hint = nearestHint(name, namesOf(node.options));
    if (std::find(global.begin(), global.end(), name) != global.end()) {
        hint = name + " comes before the command";
    } else if (hint.empty() && hasArguments(node)) {
        hint = "an argument that begins with \"-\" comes after \"--\"";
    }
    return {ParseEnd::Error, "no such option: " + name, hint, {}, {}};
}

ParseEnd unknownCommand(const CommandNode& outer, std::vector<std::string> names,
                        const std::string& word) {
    names.push_back(word);
    const std::string wrong = joined(names, " ");
    names.back() = nearestName(word, namesOf(outer.commands)).value_or("");
    const std::string hint = names.back().empty() ? "" : "did you mean " + joined(names, " ") + "?";
    return {ParseEnd::Error, "no such command: " + wrong, hint, wrong, {}};
}

// A word that nothing takes. CLI11 would report a missing command for a mistyped one.
ParseEnd leftover(const CLI::App& app, const std::string& word) {
    std::vector<std::string> names;
    const CLI::App& command = innermostCommand(app, names);
    if (isOption(word)) return unknownOption(app, command, word);
    const CommandNode node = commandNode(command);
    if (!node.commands.empty()) return unknownCommand(node, names, word);
    return {ParseEnd::Error, "unexpected argument: " + word, {}, {}, {}};
}

bool isKind(const CLI::ParseError& error, CLI::ExitCodes kind) {
    return error.get_exit_code() == static_cast<int>(kind);
}

// CLI11's message in plainer words. A second line is a hint.
ParseEnd reworded(const CLI::ParseError& error) {
    const std::string what = error.what();
    const std::string name = what.substr(0, what.find(' '));
    if (isKind(error, CLI::ExitCodes::RequiredError)) {
        const std::string missing = name == "A" ? "a command" : name;
        return {ParseEnd::Error, missing + " is missing", {}, {}, {}};
    }
    if (isKind(error, CLI::ExitCodes::ArgumentMismatch)) {
        const bool isRepeated = what.find("received") != std::string::npos;
        return {ParseEnd::Error,
                name + (isRepeated ? " is given more than once" : " the value is missing"),
                {},
                {},
                {}};
    }
    if (isKind(error, CLI::ExitCodes::ExcludesError)) {
        const std::string other = what.substr(what.rfind(' ') + 1);
        return {ParseEnd::Error, name + " and " + other + " exclude each other", {}, {}, {}};
    }
    const std::size_t end = std::min(what.find('\n'), what.size());
    return {
        ParseEnd::Error, what.substr(0, end), what.substr(std::min(end + 1, what.size())), {}, {}};
}

ParseEnd errorOf(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<std::string> rest = app.remaining(/*recurse=*/true);
    const bool isAboutRest =
        isKind(error, CLI::ExitCodes::ExtrasError) || isKind(error, CLI::ExitCodes::RequiredError);
    return isAboutRest && !rest.empty() ? leftover(app, rest.front()) : reworded(error);
}

// The command whose help explains an error about an option: the program for its own options.
std::string explaining(const CLI::App& app, const CommandNode& command, const std::string& title,
                       const std::string& error) {
    const std::string option = error.substr(0, error.find_first_of(": "));
    const std::vector<std::string> global = namesOf(commandNode(app).options);
    const std::vector<std::string> own = namesOf(command.options);
    const bool isGlobal = std::find(global.begin(), global.end(), option) != global.end() &&
                          std::find(own.begin(), own.end(), option) == own.end();
    return isGlobal ? app.get_name() : title;
}

ParseEnd emptyValue(const CLI::App& app, const std::vector<std::string>& arguments,
                    const std::string& option) {
    const std::string error = option + ": " + kEmpty;
    CommandNode command = commandNode(app);
    std::string title = command.name;
    for (const std::string& word : arguments) {
        const auto inner =
            std::find_if(command.commands.begin(), command.commands.end(),
                         [&word](const CommandNode& node) { return node.name == word; });
        if (inner == command.commands.end()) continue;
        title += " " + word;
        command = CommandNode(*inner);
    }
    return {ParseEnd::Error, error, {}, {}, explaining(app, command, title, error)};
}

ParseEnd endOf(const CLI::App& app, const CLI::ParseError& error) {
    std::vector<std::string> names{app.get_name()};
    const CLI::App& command = innermostCommand(app, names);
    ParseEnd end{ParseEnd::Version, app.version(), {}, {}, {}};
    if (error.get_exit_code() != 0) {
        end = errorOf(app, error);
    } else if (error.get_name() != "CallForVersion") {
        end = {ParseEnd::Help, helpText(commandNode(command), joined(names, " ")), {}, {}, {}};
    }
    end.command = explaining(app, commandNode(command), joined(names, " "), end.text);
    return end;
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
    const auto find = [names](std::string& text) {
        if (std::find(names.begin(), names.end(), text) != names.end()) return std::string();
        return "must be one of " + joined(names, ", ") + ", not \"" + text + "\"\n" +
               nearestHint(text, names);
    };
    option_->check(CLI::Validator(find, "{" + joined(names, ",") + "}"));
    return *this;
}

Option Option::notEmpty() {
    option_->check(check([](std::string& text) { return text.empty() ? kEmpty : ""; }));
    return *this;
}

Option Option::positive() { return inRange(1, std::numeric_limits<unsigned>::max(), "1 or more"); }

Option Option::between(unsigned least, unsigned most) {
    return inRange(least, most, std::to_string(least) + " to " + std::to_string(most));
}

Option Option::inRange(unsigned least, unsigned most, const std::string& words) {
    const auto find = [least, most, words](std::string& text) {
        unsigned number = 0;
        const bool fits = parseUnsigned(text, number) && number >= least && number <= most;
        return fits ? std::string() : "must be " + words + ", not \"" + text + "\"";
    };
    option_->check(check(find));
    option_->type_name("NUMBER")->description(option_->get_description() + ", " + words);
    return *this;
}

Option Option::taking(const char* valueName) {
    option_->type_name(valueName);
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
    const auto find = [](std::string& text) {
        std::int32_t number = 0;
        return CLI::detail::lexical_cast(text, number)
                   ? std::string()
                   : "must be a 32-bit number, not \"" + text + "\"";
    };
    CLI::Option* const option = app_->add_option(name, value, help);
    option->check(check(find))->type_name("NUMBER");
    return Option(*option);
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

OptionParser OptionParser::addCommand(const char* name, const char* summary, const char* details,
                                      const char* section) {
    CLI::App* const command = app_->add_subcommand(name, summary);
    command->footer(details)->group(section);
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

CommandNode OptionParser::tree() const { return commandNode(*app_); }

ProgramParser::ProgramParser(const char* name, const char* description)
    : app_(std::make_unique<CLI::App>(description, name)) {
    app_->allow_windows_style_options(false);  // texts may begin with "/"
    app_->group("");
    app_->set_help_flag("-h,--help", "Print this help");
}

ProgramParser::~ProgramParser() = default;

void ProgramParser::addVersion(const std::string& text) {
    app_->set_version_flag("--version", text, "Print the version");
}

void ProgramParser::setDetails(const std::string& text) { app_->footer(text); }

ParseEnd ProgramParser::parse(const std::vector<std::string>& arguments) {
    if (const auto name = emptyOption(arguments)) {
        return emptyValue(*app_, arguments, *name);
    }
    try {
        // CLI11 expects them in reverse order.
        app_->parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
    } catch (const CLI::ParseError& error) {
        return endOf(*app_, error);
    }
    return {ParseEnd::Understood, {}, {}, {}, {}};
}
