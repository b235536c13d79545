#include "shared/HelpText.h"

#include <algorithm>
#include <cstddef>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "shared/DisplayWidth.h"
#include "shared/Joined.h"
#include "shared/Table.h"

namespace {

using Lines = std::vector<std::string>;

constexpr std::size_t kWidth = 80;
constexpr std::size_t kPageWidth = 100;
constexpr std::size_t kMostLabel = 24;  // after a longer label the text starts a new line

// A command or option, and what it is for.
using Row = std::pair<std::string, std::string>;

struct Section {
    std::string heading;
    std::vector<Row> rows;
};
using Sections = std::vector<Section>;

void addRow(Sections& sections, const std::string& heading, Row row) {
    const auto found =
        std::find_if(sections.begin(), sections.end(),
                     [&heading](const Section& section) { return section.heading == heading; });
    Section& section =
        found == sections.end() ? sections.emplace_back(Section{heading, {}}) : *found;
    section.rows.push_back(std::move(row));
}

std::string labelOf(const OptionNode& option) {
    const std::string name =
        option.shortName.empty() ? option.name : option.shortName + ", " + option.name;
    if (option.isPositional || !option.takesValue) return name;
    return name + (option.needsValue ? " " + option.valueName : " [" + option.valueName + "]");
}

std::string textOf(const OptionNode& option) {
    std::string text = option.help;
    if (!option.choices.empty()) text += ": " + joined(option.choices, ", ");
    if (!option.defaultText.empty()) text += " (default: " + option.defaultText + ")";
    return text;
}

void addCommands(Sections& sections, const CommandNode& outer, const std::string& prefix,
                 const std::string& section) {
    for (const CommandNode& command : outer.commands) {
        const std::string heading = section.empty() ? command.section : section;
        if (command.commands.empty()) {
            addRow(sections, heading, {prefix + command.name, command.summary});
        } else {
            addCommands(sections, command, prefix + command.name + " ", heading);
        }
    }
}

bool isIn(const std::vector<OptionNode>& options, const OptionNode& option) {
    return std::any_of(options.begin(), options.end(),
                       [&option](const OptionNode& other) { return other.name == option.name; });
}

// Commands, arguments and options. Options in `known` are left out.
Sections sectionsOf(const CommandNode& command, const std::vector<OptionNode>& known = {}) {
    Sections sections;
    const bool isGroup = !command.section.empty();
    addCommands(sections, command, "", isGroup ? "Commands" : "");
    for (const OptionNode& option : command.options) {
        if (option.isPositional) addRow(sections, "Arguments", {labelOf(option), textOf(option)});
    }
    for (const OptionNode& option : command.options) {
        if (option.isPositional || isIn(known, option)) continue;
        addRow(sections, option.heading, {labelOf(option), textOf(option)});
    }
    return sections;
}

std::string usageOf(const CommandNode& command, const std::string& title) {
    std::string usage = title + " [OPTION...]";
    if (!command.commands.empty()) return usage + " COMMAND [ARGUMENT...]";
    for (const OptionNode& option : command.options) {
        if (!option.isPositional) continue;
        const std::string name = option.isList ? option.name + "..." : option.name;
        usage += option.isRequired ? " " + name : " [" + name + "]";
    }
    return usage;
}

// Lines of at most `width` columns.
Lines wrapped(const std::string& text, std::size_t width) {
    Lines lines;
    std::istringstream words(text);
    for (std::string word; words >> word;) {
        const bool fits =
            !lines.empty() && displayWidth(lines.back()) + 1 + displayWidth(word) <= width;
        fits ? lines.back() += " " + word : lines.emplace_back(word);
    }
    return lines;
}

struct Details {
    Lines examples;
    Lines paragraphs;  // those that begin with a space are shown unchanged
};

Details detailsOf(const CommandNode& command) {
    constexpr std::string_view kExample = "Example: ";
    Details details;
    bool isOpen = false;  // the last paragraph continues
    std::istringstream lines(command.details);
    for (std::string line; std::getline(lines, line);) {
        const bool isExample = line.rfind(kExample, 0) == 0;
        const bool isText = !isExample && !line.empty() && line.front() != ' ';
        if (isExample) {
            details.examples.push_back(line.substr(kExample.size()));
        } else if (isText && isOpen) {
            details.paragraphs.back() += " " + line;
        } else if (!line.empty()) {
            details.paragraphs.push_back(line);
        }
        isOpen = isText;
    }
    return details;
}

std::string rowText(const Row& row, std::size_t labelWidth) {
    const std::string indent(labelWidth + 4, ' ');
    std::string text = "  " + row.first;
    const std::size_t width = displayWidth(row.first);
    text += width > labelWidth ? "\n" + indent : std::string(labelWidth - width + 2, ' ');
    return text + joined(wrapped(row.second, kWidth - indent.size()), ("\n" + indent).c_str()) +
           "\n";
}

std::size_t labelWidthOf(const Sections& sections) {
    std::size_t most = 0;
    for (const Section& section : sections) {
        for (const Row& row : section.rows) {
            const std::size_t width = displayWidth(row.first);
            if (width <= kMostLabel) most = std::max(most, width);
        }
    }
    return most;
}

std::string detailsText(const Details& details) {
    std::string text;
    if (!details.examples.empty()) {
        text += details.examples.size() > 1 ? "\nExamples:\n" : "\nExample:\n";
        for (const std::string& example : details.examples) text += "  " + example + "\n";
    }
    for (const std::string& paragraph : details.paragraphs) {
        const bool isVerbatim = paragraph.front() == ' ';
        text += isVerbatim ? paragraph : "\n" + joined(wrapped(paragraph, kWidth), "\n");
        text += "\n";
    }
    return text;
}

std::string detailsMarkdown(const Details& details) {
    std::string text;
    if (!details.examples.empty()) {
        text += details.examples.size() > 1 ? "\nExamples:\n" : "\nExample:\n";
        text += "\n```text\n" + joined(details.examples, "\n") + "\n```\n";
    }
    bool isInBlock = false;
    for (const std::string& paragraph : details.paragraphs) {
        const bool isVerbatim = paragraph.front() == ' ';
        if (isVerbatim != isInBlock) text += isVerbatim ? "\n```text\n" : "```\n";
        text += isVerbatim ? paragraph + "\n"
                           : "\n" + joined(wrapped(paragraph, kPageWidth), "\n") + "\n";
        isInBlock = isVerbatim;
    }
    return isInBlock ? text + "```\n" : text;
}

std::string commandMarkdown(const CommandNode& command, const std::string& title,
                            const Sections& sections) {
    std::string text =
        "\n" + command.summary + ".\n\n```text\n" + usageOf(command, title) + "\n```\n";
    for (const Section& section : sections) {
        std::vector<TableRow> rows{{section.heading, ""}};
        for (const Row& row : section.rows) rows.push_back({"`" + row.first + "`", row.second});
        text += "\n" + markdownTable(rows);
    }
    return text + detailsMarkdown(detailsOf(command));
}

std::string commandsMarkdown(const CommandNode& outer, const std::string& prefix,
                             const std::vector<OptionNode>& known) {
    std::string text;
    for (const CommandNode& command : outer.commands) {
        const std::string title = prefix + " " + command.name;
        text += command.commands.empty()
                    ? "\n### " + title + "\n" +
                          commandMarkdown(command, title, sectionsOf(command, known))
                    : commandsMarkdown(command, title, known);
    }
    return text;
}

}  // namespace

std::string helpText(const CommandNode& command, const std::string& title) {
    const Sections sections = sectionsOf(command);
    const std::size_t labelWidth = labelWidthOf(sections);
    std::string text = command.summary + "\n\nUsage: " + usageOf(command, title) + "\n";
    for (const Section& section : sections) {
        text += "\n" + section.heading + ":\n";
        for (const Row& row : section.rows) text += rowText(row, labelWidth);
    }
    return text + detailsText(detailsOf(command));
}

std::string helpMarkdown(const CommandNode& program) {
    return "## " + program.name + "\n" +
           commandMarkdown(program, program.name, sectionsOf(program)) +
           commandsMarkdown(program, program.name, program.options);
}
