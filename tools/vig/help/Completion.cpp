#include "tools/vig/help/HelpPages.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>

#include "tools/vig/findings/WarningNames.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// An option whose argument may be left out takes it behind "=", or, if it may be any word, behind a space as well.
bool maybeAlone(const OptionHelp& option) {
    return option.argument.starts_with('[');
}

// Returns the words that the argument of the option is one of, or nothing if it can be anything.
std::string choicesOf(const OptionHelp& option) {
    std::string words;
    if (option.argument.find('|') != std::string::npos) {
        words = option.argument;
        std::ranges::replace(words, '|', ' ');
    } else if (option.names.back() == "--allow") {
        words = joined(kWarningNames, " ", [](const WarningName& warning) { return warning.name; });
    }
    return words;
}

bool takesFile(const OptionHelp& option) {
    return option.isPositional || option.argument == "FILE" || option.argument == "EVENTS";
}

std::string optionNamesOf(const VerbHelp& verb) {
    std::string words;
    for (const OptionHelp& option : verb.options) {
        for (const std::string& name : option.names) {
            if (!option.isPositional) {
                words += (words.empty() ? "" : " ") + name;
            }
        }
    }
    return words;
}

constexpr std::string_view kBashBegin = R"(# Completes the command line of vig in bash.

_vig() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} verb=${COMP_WORDS[1]} words='' files=''
    # Bash splits --format=svg into three words.
    if [[ $word == = ]]; then
        word=''
    elif [[ $before == = ]]; then
        before=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    ((COMP_CWORD > 1)) || verb=''
    case "$verb $before" in
)";

constexpr std::string_view kBashEnd = R"(    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    if [[ $files && $word != -* ]]; then
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        compopt -o filenames 2>/dev/null
    fi
}

complete -F _vig vig
)";

std::string bashCase(const std::string& pattern, const std::string& words, bool files) {
    return fmt::format("        {})\n            words='{}' files={}\n            ;;\n", pattern, words,
                       files ? "yes" : "''");
}

// Returns text that stands within single quotes, with what zsh's _arguments gives a meaning escaped.
std::string zshEscaped(std::string_view text) {
    std::string result;
    for (const char each : text) {
        const bool hasMeaning = each == '[' || each == ']' || each == ':' || each == '\\';
        result += hasMeaning ? "\\" : "";
        result += each == '\'' ? "'\\''" : std::string(1, each);
    }
    return result;
}

std::string zshActionOf(const OptionHelp& option) {
    const std::string choices = choicesOf(option);
    if (!choices.empty()) {
        return "(" + choices + ")";
    }
    return takesFile(option) ? "_files" : " ";
}

std::string zshArgumentOf(const OptionHelp& option, const std::string& name) {
    const std::string_view repeated = option.isRepeated ? "*" : "";
    if (option.isPositional) {
        return fmt::format("{}:{}:{}", repeated, zshEscaped(name), zshActionOf(option));
    }
    if (option.argument.empty()) {
        return fmt::format("{}[{}]", name, zshEscaped(option.description));
    }
    if (maybeAlone(option)) {
        return fmt::format("{}=-[{}]::{}: ", name, zshEscaped(option.description), zshEscaped(option.argument));
    }
    return fmt::format("{}{}=[{}]:{}:{}", repeated, name, zshEscaped(option.description), zshEscaped(option.argument),
                       zshActionOf(option));
}

// Returns what _arguments is told, a line for each name.
std::string zshArgumentsOf(const VerbHelp& verb, std::string_view indent) {
    std::string lines;
    for (const OptionHelp& option : verb.options) {
        for (const std::string& name : option.names) {
            lines += fmt::format(" \\\n{}'{}'", indent, zshArgumentOf(option, name));
        }
    }
    return lines + "\n";
}

}  // namespace

std::string bashCompletionOf(const ProgramHelp& help) {
    std::string script(kBashBegin);
    const std::string verbs = joined(help.verbs, " ", [](const VerbHelp& verb) { return verb.name; });
    script += bashCase("' '*", verbs + " " + optionNamesOf(help.general), false);
    for (const VerbHelp& verb : help.verbs) {
        for (const OptionHelp& option : verb.options) {
            if (!option.isPositional && !option.argument.empty() && !maybeAlone(option)) {
                script +=
                    bashCase("'" + verb.name + " " + option.names.back() + "'", choicesOf(option), takesFile(option));
            }
        }
        script += bashCase("'" + verb.name + " '*", optionNamesOf(verb), true);
    }
    return script + std::string(kBashEnd);
}

std::string zshCompletionOf(const ProgramHelp& help) {
    std::string script =
        "#compdef vig\n# Completes the command line of vig in zsh.\n\n_vig() {\n    local -a verbs=(\n";
    for (const VerbHelp& verb : help.verbs) {
        script += fmt::format("        '{}:{}'\n", verb.name, zshEscaped(verb.description));
    }
    script += "    )\n    if ((CURRENT == 2)); then\n        _describe -t verbs verb verbs\n        _arguments" +
              zshArgumentsOf(help.general, "            ") +
              "        return\n    fi\n    shift words\n    ((CURRENT--))\n    case $words[1] in\n";
    for (const VerbHelp& verb : help.verbs) {
        script += fmt::format("        {})\n            _arguments{}            ;;\n", verb.name,
                              zshArgumentsOf(verb, "                "));
    }
    return script + "    esac\n}\n\n_vig \"$@\"\n";
}

}  // namespace Brenta::OS::VIG::Tool
