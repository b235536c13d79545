#include "shared/CompletionScript.h"

#include <cstddef>
#include <functional>
#include <set>
#include <utility>
#include <vector>

#include "shared/CommandTree.h"

namespace {

constexpr const char* kBash = R"script(# Completion of @PROGRAM@ for bash: source this file.
_@PROGRAM@() {
    local word=${COMP_WORDS[COMP_CWORD]} path= words= i
    COMPREPLY=()
    case "${COMP_WORDS[COMP_CWORD - 1]}" in
        @VALUE_OPTIONS@) return ;;
    esac
    for ((i = 1; i < COMP_CWORD; i++)); do
        case "${COMP_WORDS[i - 1]}" in
            @VALUE_OPTIONS@) continue ;;
        esac
        case "${path:+$path }${COMP_WORDS[i]}" in
            @PATHS@)
                path=${path:+$path }${COMP_WORDS[i]} ;;
        esac
    done
    case "$path" in
@CASES@    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -o default -F _@PROGRAM@ @PROGRAM@ @PROGRAM@.exe
)script";

constexpr const char* kPowershell =
    R"script(# Completion of @PROGRAM@ for PowerShell, for the profile.
Register-ArgumentCompleter -Native -CommandName '@PROGRAM@', '@PROGRAM@.exe' -ScriptBlock {
    param($wordToComplete, $commandAst, $cursorPosition)
    $words = @{
@WORDS@    }
    $path = ''
    foreach ($element in $commandAst.CommandElements | Select-Object -Skip 1) {
        $next = "$path $($element.Extent.Text)".Trim()
        if ($element.Extent.EndOffset -lt $cursorPosition -and $words.ContainsKey($next)) {
            $path = $next
        }
    }
    $words[$path] | Where-Object { $_ -like "$wordToComplete*" } | ForEach-Object {
        [System.Management.Automation.CompletionResult]::new($_, $_, 'ParameterValue', $_)
    }
}
)script";

// The text with each place holder replaced by what stands for it.
using Pieces = std::vector<std::pair<std::string, std::string>>;

std::string filled(std::string text, const Pieces& pieces) {
    for (const auto& [holder, piece] : pieces) {
        for (std::size_t at = 0; (at = text.find(holder, at)) != std::string::npos;) {
            text.replace(at, holder.size(), piece);
            at += piece.size();
        }
    }
    return text;
}

// Visits a command and those inside it with their paths: "" for the program, "conf get".
using Visit = std::function<void(const std::string& path, const CommandNode& command)>;

void forEachCommand(const std::string& path, const CommandNode& command, const Visit& visit) {
    visit(path, command);
    for (const CommandNode& inner : command.commands) {
        forEachCommand(path.empty() ? inner.name : path + " " + inner.name, inner, visit);
    }
}

// What can come next behind a command.
std::vector<std::string> wordsOf(const CommandNode& command) {
    std::vector<std::string> words;
    for (const CommandNode& inner : command.commands) words.push_back(inner.name);
    for (const OptionNode& option : command.options) {
        if (!option.isPositional) {
            words.push_back(option.name);
        } else {
            words.insert(words.end(), option.choices.begin(), option.choices.end());
        }
    }
    return words;
}

std::string joined(const std::vector<std::string>& words, const std::string& quote,
                   const std::string& separator) {
    std::string text;
    for (const std::string& word : words) {
        if (!text.empty()) text += separator;
        text += quote + word + quote;
    }
    return text;
}

// Options that the next word belongs to, of all commands.
std::vector<std::string> valueOptions(const CommandNode& program) {
    std::set<std::string> names;
    forEachCommand("", program, [&names](const std::string&, const CommandNode& command) {
        for (const OptionNode& option : command.options) {
            if (option.takesValue && !option.isPositional) names.insert(option.name);
        }
    });
    return {names.begin(), names.end()};
}

}  // namespace

std::string bashCompletion(const CommandNode& program) {
    std::vector<std::string> paths;
    std::string cases;
    forEachCommand("", program, [&](const std::string& path, const CommandNode& command) {
        if (!path.empty()) paths.push_back(path);
        cases.append("        \"").append(path).append("\") words=\"");
        cases.append(joined(wordsOf(command), "", " ")).append("\" ;;\n");
    });
    return filled(kBash, {{"@PROGRAM@", program.name},
                          {"@VALUE_OPTIONS@", joined(valueOptions(program), "", " | ")},
                          {"@PATHS@", joined(paths, "\"", " | ")},
                          {"@CASES@", cases}});
}

std::string powershellCompletion(const CommandNode& program) {
    std::string words;
    forEachCommand("", program, [&words](const std::string& path, const CommandNode& command) {
        words.append("        '").append(path).append("' = @(");
        words.append(joined(wordsOf(command), "'", ", ")).append(")\n");
    });
    return filled(kPowershell, {{"@PROGRAM@", program.name}, {"@WORDS@", words}});
}
