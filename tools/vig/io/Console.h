#pragma once

#include <unistd.h>

#include <string>
#include <string_view>

namespace Brenta::OS::VIG::Tool {

class Output;

inline constexpr int kExitDone = 0;
inline constexpr int kExitRefused = 1;   // the rule document is
inline constexpr int kExitUnusable = 2;  // the arguments or an input, or the output cannot be written
inline constexpr int kExitInterrupted = 130;

// A verb reads and writes these streams; the descriptors stay the caller's.
struct Console {
    int in = STDIN_FILENO;
    int out = STDOUT_FILENO;
    int err = STDERR_FILENO;

    // Writes a line to `err`, without what a terminal would act on, and of a very long one the beginning.
    void say(std::string_view line) const;

    // Writes whole lines to `err`. REQUIRES: they are printable.
    void sayText(std::string_view lines) const;

    // Says it as an error of the program.
    void complain(std::string_view what) const;

    // Writes what `output` has collected for `out`. Returns `status`, or kExitUnusable if that failed, having said why.
    int finish(Output& output, int status) const;

    // Returns true if `out` is a terminal whose user has nothing against colours.
    bool wantsColours() const;
};

inline constexpr std::string_view kBoldYellow = "\x1b[1;33m";

// Returns the text in the colour, which may be empty for none, if the output is coloured at all.
std::string inColour(std::string_view colour, std::string_view text, bool coloured);

}  // namespace Brenta::OS::VIG::Tool
