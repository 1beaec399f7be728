#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "tools/vig/io/Console.h"
#include "tools/vig/io/Interruption.h"

namespace Brenta::OS::VIG::Tool {

class CommandLine;

struct InitOptions {
    static constexpr std::size_t kQuestions = 8;

    std::string rules;                                                // the document to write; empty for rules.json
    std::array<std::optional<std::string>, kQuestions> answers = {};  // in the order of the questions
    bool overwrite = false;
    bool list = false;
};

// `vig init` writes a rule document and its tests. Returns the exit status.
int init(const InitOptions& options, const Console& console, const Interruption& interruption);

void addInit(CommandLine& commandLine, InitOptions& options);

}  // namespace Brenta::OS::VIG::Tool
