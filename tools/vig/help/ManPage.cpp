#include "tools/vig/help/HelpPages.h"

#include <string_view>

#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Returns text that the formatter leaves as it is.
std::string escaped(std::string_view text) {
    std::string result;
    bool atLineStart = true;
    for (const char each : text) {
        if (atLineStart && (each == '.' || each == '\'')) {
            result += "\\&";
        }
        atLineStart = each == '\n';
        if (each == '\\') {
            result += "\\e";
        } else if (each == '-' || each == '\'' || each == '`' || each == '^' || each == '~') {
            // Unescaped, these become the signs of typography, which cannot be copied into a shell.
            result += each == '-'    ? "\\-"
                      : each == '\'' ? "\\(aq"
                      : each == '`'  ? "\\(ga"
                      : each == '^'  ? "\\(ha"
                                     : "\\(ti";
        } else {
            result += each;
        }
    }
    return result;
}

std::string bold(std::string_view text) {
    return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(std::string_view text) {
    return "\\fI" + escaped(text) + "\\fR";
}

// Returns the name of the verb, and "RULES", "[EVENTS]" and the like.
std::string synopsisOf(const VerbHelp& verb) {
    std::string line = ".B vig " + escaped(verb.name) + "\n";
    for (const OptionHelp& option : verb.options) {
        if (option.isPositional) {
            const std::string name = italic(option.names.front()) + (option.isRepeated ? "...\\&" : "");
            line += (option.isRequired ? name : "[" + name + "]") + "\n";
        }
    }
    return line + "[" + italic("options") + "]\n";
}

std::string optionsOf(const VerbHelp& verb) {
    std::string text;
    for (const OptionHelp& option : verb.options) {
        const std::string tag = joined(option.names, ", ", option.isPositional ? italic : bold);
        text += ".TP\n" + tag + (option.argument.empty() ? "" : " " + italic(option.argument)) + "\n" +
                escaped(option.description) + "\n";
    }
    return text;
}

std::string preformatted(const std::string& text) {
    return text.empty() ? "" : ".PP\n.nf\n" + escaped(text) + "\n.fi\n";
}

}  // namespace

std::string manPageOf(const ProgramHelp& help) {
    std::string page = ".TH VIG 1 \"\" \"vig " + escaped(help.version) + "\" \"User Commands\"\n";
    page += ".SH NAME\nvig \\- run and examine rule documents\n.SH SYNOPSIS\n";
    for (const VerbHelp& verb : help.verbs) {
        page += synopsisOf(verb) + (&verb == &help.verbs.back() ? "" : ".br\n");
    }
    page += ".SH DESCRIPTION\n" + escaped(help.general.description) + "\n" + optionsOf(help.general);
    page += preformatted(help.general.footer) + ".SH COMMANDS\n";
    for (const VerbHelp& verb : help.verbs) {
        page += ".SS vig " + escaped(verb.name) + "\n" + escaped(verb.description) + "\n" + optionsOf(verb) +
                preformatted(verb.footer);
    }
    return page;
}

}  // namespace Brenta::OS::VIG::Tool
