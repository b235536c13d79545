#include "shared/CompletionScript.h"

#include <cstddef>

namespace {

constexpr const char* kBash = R"script(# Completion of @PROGRAM@ for bash: source this file.
_@PROGRAM@() {
    local IFS=$'\n' words
    words=$("${COMP_WORDS[0]}" complete -- "${COMP_WORDS[@]:1:COMP_CWORD-1}" 2>/dev/null)
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "${COMP_WORDS[COMP_CWORD]}")
}
complete -o default -F _@PROGRAM@ @PROGRAM@ @PROGRAM@.exe
)script";

constexpr const char* kPowershell =
    R"script(# Completion of @PROGRAM@ for PowerShell, for the profile.
Register-ArgumentCompleter -Native -CommandName '@PROGRAM@', '@PROGRAM@.exe' -ScriptBlock {
    param($wordToComplete, $commandAst, $cursorPosition)
    $words = @($commandAst.CommandElements | Select-Object -Skip 1 |
        Where-Object { $_.Extent.EndOffset -lt $cursorPosition } |
        ForEach-Object { $_.Extent.Text.Trim('"', "'") })
    & $commandAst.GetCommandName() complete '--' @words 2>$null |
        Where-Object { $_ -like "$wordToComplete*" } | ForEach-Object {
            [System.Management.Automation.CompletionResult]::new($_, $_, 'ParameterValue', $_)
        }
}
)script";

std::string filled(std::string text, const std::string& program) {
    const std::string holder = "@PROGRAM@";
    for (std::size_t at = 0; (at = text.find(holder, at)) != std::string::npos;) {
        text.replace(at, holder.size(), program);
        at += program.size();
    }
    return text;
}

}  // namespace

std::string bashCompletion(const std::string& program) { return filled(kBash, program); }

std::string powershellCompletion(const std::string& program) {
    return filled(kPowershell, program);
}
