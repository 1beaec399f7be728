#include "tools/vig/findings/FindingWriters.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vig/document/Registry.h"
#include "tools/vig/findings/RefusalSearch.h"
#include "tools/vig/io/Console.h"
#include "tools/vig/words/Characters.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::string_view kBold = "\x1b[1m";
constexpr std::string_view kBoldRed = "\x1b[1;31m";
constexpr std::string_view kGreen = "\x1b[32m";

constexpr std::size_t kMostShownOfLine = 100;
constexpr std::size_t kMostShownOfText = 500;
constexpr std::size_t kMostShownBefore = 40;  // the place, of a longer line

// Shows the line as it stands in the file, but for what a terminal would act on. Tabs stay.
std::string shownLine(std::string_view text) {
    std::string shown;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find('\t', begin), text.size());
        shown += (begin == 0 ? "" : "\t") + printable(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return shown;
}

// Shows as escapes what one would look for in vain at a place.
std::string visible(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const auto [code, length] = firstCharacter(text);
        if (code >= 0x80 && isInvisible(code)) {
            shown += fmt::format("\\u{:04x}", static_cast<unsigned>(code));
        } else {
            shown += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return shown;
}

// Returns what takes the same room as the text, and shows nothing.
std::string blank(std::string_view text) {
    std::string spaces;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find('\t', begin), text.size());
        spaces += (begin == 0 ? "" : "\t") + std::string(columnsOf(text.substr(begin, end - begin)), ' ');
        begin = end + 1;
    }
    return spaces;
}

std::string mark(std::string_view text) {
    return "^" + std::string(std::max<std::size_t>(columnsOf(text), 1) - 1, '~');
}

// Returns the nearest place at or before `offset` where a character begins that is not drawn upon the one before it.
std::size_t cutBefore(std::string_view line, std::size_t offset) {
    constexpr int kMostMarks = 16;
    std::size_t place = characterStart(line, offset);
    for (int marks = 0; marks < kMostMarks && 0 < place && place < line.size(); ++marks) {
        if (columnsOf(line.substr(place, firstCharacter(line.substr(place)).length)) > 0) {
            break;
        }
        place = characterStart(line, place - 1);
    }
    return place;
}

// It is the line around a place in it, in three parts.
struct ShownLine {
    std::string before;
    std::string at;
    std::string after;
};

ShownLine show(std::string_view line, std::size_t column, std::size_t length) {
    const std::size_t place = characterStart(line, std::min(column - 1, line.size()));
    const bool isLong = line.size() > kMostShownOfLine;
    const std::size_t begin = isLong && place > kMostShownBefore ? cutBefore(line, place - kMostShownBefore) : 0;
    const std::size_t end = isLong ? cutBefore(line, std::min(begin + kMostShownOfLine, line.size())) : line.size();
    std::size_t placeEnd = place + std::min(length, end - place);
    while (placeEnd < end && !beginsCharacter(line[placeEnd])) {
        ++placeEnd;
    }
    return {(begin > 0 ? "…" : "") + shownLine(line.substr(begin, place - begin)),
            shownLine(visible(line.substr(place, placeEnd - place))),
            shownLine(line.substr(placeEnd, end - placeEnd)) + (end < line.size() ? "…" : "")};
}

// Names and numbers of a document may have any length.
std::string shownText(std::string_view text) {
    return printable(shortened(text, kMostShownOfText));
}

std::string counted(std::size_t count, std::string_view what) {
    return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

class TextFindings final : public FindingWriter {
  public:
    TextFindings(Output& output, bool wantsColours, bool isVerbose)
        : output(output), coloured(wantsColours), verbose(isVerbose) {}

    void write(const SourceText& source, const Findings& findings) override {
        for (const Finding& finding : findings.all) {
            write(source, finding);
        }
        if (!findings.undecided.empty()) {
            output.write(inColour(kBold, printable(source.name()) + ": ", coloured) +
                         inColour(kBoldYellow, "not decided: ", coloured) + gapsIn(findings) + "\n");
        }
    }

    void end(const FindingCounts& counts) override {
        if (counts.files == 0) {
            return;
        }
        std::vector<std::string> found;
        if (counts.errors > 0) {
            found.push_back(counted(counts.errors, "error"));
        }
        if (counts.warnings > 0) {
            found.push_back(counted(counts.warnings, "warning"));
        }
        const std::string gaps = counts.undecided == 0 ? ""
                                                       : fmt::format("; not everything could be decided of {}",
                                                                     counted(counts.undecided, "machine"));
        output.write(fmt::format("{} in {}{}\n",
                                 found.empty() ? "nothing found" : fmt::format("{}", fmt::join(found, ", ")),
                                 counted(counts.files, "file"), gaps));
    }

  private:
    void write(const SourceText& source, const Finding& finding) {
        const auto [line, column] = source.positionOf(finding.place.begin);
        const bool isError = finding.severity == Severity::Error;
        const ShownLine shown = show(source.line(line), column, finding.place.end - finding.place.begin);
        output.write(inColour(kBold, fmt::format("{}:{}:{}: ", printable(source.name()), line, column), coloured) +
                     inColour(isError ? kBoldRed : kBoldYellow, isError ? "error: " : "warning: ", coloured) +
                     fmt::format("{} [{}]\n", shownText(finding.message), finding.name));
        output.write(fmt::format("    {}{}{}\n    {}{}\n", shown.before, shown.at, shown.after, blank(shown.before),
                                 inColour(kGreen, mark(shown.at), coloured)));
        if (!finding.place.path.empty()) {
            const std::string transition =
                finding.transition ? fmt::format(": {} -> {} (line {})", shownState(finding.transition->from),
                                                 shownState(finding.transition->to), finding.transition->line)
                                   : "";
            output.write(fmt::format("    path: {}{}\n", shownText(finding.place.path), transition));
        }
        if (!finding.hint.empty()) {
            output.write(fmt::format("    hint: {}\n", shownText(finding.hint)));
        }
        if (verbose && finding.witness) {
            writeWitness(*finding.witness);
        }
    }

    void writeWitness(const Witness& witness) {
        std::string lines = witness.events.empty() ? "    for example: as soon as it starts\n" : "    for example:\n";
        for (const EventRecord& each : witness.events) {
            lines += "        " + shownText(jsonOf(each)) + "\n";
        }
        if (!witness.draws.empty()) {
            lines += shownText(fmt::format("    with the draws {}", fmt::join(witness.draws, ", "))) + "\n";
        }
        output.write(lines);
    }

    Output& output;
    const bool coloured;
    const bool verbose;
};

}  // namespace

std::string gapsIn(const Findings& findings) {
    constexpr std::size_t kMostNamed = 5;
    const auto named = std::span(findings.undecided).first(std::min(findings.undecided.size(), kMostNamed));
    const std::size_t others = findings.undecided.size() - named.size();
    return "warnings may be missing of " +
           joined(named, ", ",
                  [](const UndecidedConfig& each) { return fmt::format("{} (id {})", each.path, each.id); }) +
           (others > 0 ? fmt::format(" and {} more", others) : "");
}

std::string textOf(const SourceText& source, const Findings& findings) {
    std::string text;
    Output output([&text](std::string_view piece) {
        text += piece;
        return 0;
    });
    TextFindings(output, false, false).write(source, findings);
    output.flush();
    return text;
}

std::string refusalText(const DocumentText& document) {
    return textOf(document.source(), {refusalsIn(document, libraryRegistry()), {}, {}});
}

std::unique_ptr<FindingWriter> textFindings(Output& output, bool coloured, bool verbose) {
    return std::make_unique<TextFindings>(output, coloured, verbose);
}

}  // namespace Brenta::OS::VIG::Tool
