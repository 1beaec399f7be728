#pragma once

#include <string>
#include <vector>

namespace Brenta::OS::VIG::Tool {

// What the command line is, as its parser knows it: the manual page and the shell completions are made of this, so that
// they never differ from --help.

struct OptionHelp {
    std::vector<std::string> names;  // "-h", "--help"; of a positional argument its one name: "RULES"
    bool isPositional;
    bool isRequired;
    bool isRepeated;       // may be given several times
    std::string argument;  // "FILE", "text|jsonl"; empty for a flag and for a positional argument
    std::string description;
};

struct VerbHelp {
    std::string name;
    std::string description;
    std::vector<OptionHelp> options;
    std::string footer;  // lines that keep their form
};

struct ProgramHelp {
    std::string version;
    VerbHelp general;  // the program as a whole, with its own options
    std::vector<VerbHelp> verbs;
};

}  // namespace Brenta::OS::VIG::Tool
