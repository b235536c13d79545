#include "CompletionScript.h"

#include <functional>
#include <set>

namespace {

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
        cases +=
            "        \"" + path + "\") words=\"" + joined(wordsOf(command), "", " ") + "\" ;;\n";
    });
    const std::string function = "_" + program.name;
    const std::string values = joined(valueOptions(program), "", " | ");
    return "# Completion of " + program.name + " for bash: source this file.\n" + function +
           "() {\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} path= words= i\n"
           "    COMPREPLY=()\n"
           "    case \"${COMP_WORDS[COMP_CWORD - 1]}\" in\n"
           "        " +
           values +
           ") return ;;\n"
           "    esac\n"
           "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
           "        case \"${COMP_WORDS[i - 1]}\" in\n"
           "            " +
           values +
           ") continue ;;\n"
           "        esac\n"
           "        case \"${path:+$path }${COMP_WORDS[i]}\" in\n"
           "            " +
           joined(paths, "\"", " | ") +
           ")\n"
           "                path=${path:+$path }${COMP_WORDS[i]} ;;\n"
           "        esac\n"
           "    done\n"
           "    case \"$path\" in\n" +
           cases +
           "    esac\n"
           "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n"
           "}\n"
           "complete -o default -F " +
           function + " " + program.name + " " + program.name + ".exe\n";
}

std::string powershellCompletion(const CommandNode& program) {
    std::string words;
    forEachCommand("", program, [&words](const std::string& path, const CommandNode& command) {
        words += "        '" + path + "' = @(" + joined(wordsOf(command), "'", ", ") + ")\n";
    });
    return "# Completion of " + program.name +
           " for PowerShell: run this script in the profile.\n" +
           "Register-ArgumentCompleter -Native -CommandName '" + program.name + "', '" +
           program.name +
           ".exe' -ScriptBlock {\n"
           "    param($wordToComplete, $commandAst, $cursorPosition)\n"
           "    $words = @{\n" +
           words +
           "    }\n"
           "    $path = ''\n"
           "    foreach ($element in $commandAst.CommandElements | Select-Object -Skip 1) {\n"
           "        $next = \"$path $($element.Extent.Text)\".Trim()\n"
           "        if ($element.Extent.EndOffset -lt $cursorPosition -and "
           "$words.ContainsKey($next)) {\n"
           "            $path = $next\n"
           "        }\n"
           "    }\n"
           "    $words[$path] | Where-Object { $_ -like \"$wordToComplete*\" } | ForEach-Object {\n"
           "        [System.Management.Automation.CompletionResult]::new($_, $_, 'ParameterValue', "
           "$_)\n"
           "    }\n"
           "}\n";
}
