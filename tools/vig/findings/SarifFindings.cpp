#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/vig/document/ParseErrorText.h"
#include "tools/vig/findings/FindingWriters.h"
#include "tools/vig/findings/WarningNames.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Returns what findings can be called, with what that means.
std::vector<WarningName> rules() {
    std::vector<WarningName> all;
    for (const ParseErrorText& each : kParseErrorTexts) {
        all.push_back({each.name, each.meaning});
    }
    all.insert(all.end(), std::begin(kWarningNames), std::end(kWarningNames));
    return all;
}

// Puts a percent sign where a URI needs one.
std::string uriOf(std::string_view path) {
    constexpr std::string_view kPlain = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/";
    std::string uri = path.starts_with('/') ? "file://" : "";
    for (const char each : path) {
        uri += kPlain.find(each) != std::string_view::npos
                   ? std::string(1, each)
                   : fmt::format("%{:02X}", static_cast<unsigned>(static_cast<unsigned char>(each)));
    }
    return uri;
}

// Counts the columns of places in characters. From one place to the next it counts only what lies between, so that
// many places in one long line do not take the square of the time.
class Columns {
  public:
    explicit Columns(const SourceText& text) : source(text) {}

    // REQUIRES: `offset` is not before that of the last call.
    SourceText::Position advance(std::size_t offset) {
        const SourceText::Position position = source.positionOf(offset);
        const std::size_t place = source.offsetOf(position);
        if (position.line != last.line) {
            last = {position.line, 1};
            lastPlace = source.offsetOf(last);
        }
        last.column += charactersIn(std::string_view(source.text()).substr(lastPlace, place - lastPlace));
        lastPlace = place;
        return last;
    }

  private:
    const SourceText& source;
    SourceText::Position last{1, 1};
    std::size_t lastPlace = source.offsetOf(last);
};

std::string regionOf(Columns& columns, const Place& place) {
    const auto start = columns.advance(place.begin);
    Columns rest = columns;
    const auto end = rest.advance(place.end);
    return fmt::format(R"({{"startLine":{},"startColumn":{},"endLine":{},"endColumn":{}}})", start.line, start.column,
                       end.line, end.column);
}

std::string logicalLocations(const Finding& finding) {
    const std::string& path = finding.place.path;
    const auto& transition = finding.transition;
    const std::string name =
        transition ? R"("name":)" + inQuotes(transition->from + " -> " + transition->to) + "," : "";
    return path.empty() ? ""
                        : fmt::format(R"(,"logicalLocations":[{{{}"fullyQualifiedName":{}}}])", name, inQuotes(path));
}

class SarifFindings final : public FindingWriter {
  public:
    explicit SarifFindings(Output& output) : output(output) {
        output.write(R"({"version":"2.1.0",)"
                     R"("$schema":"https://docs.oasis-open.org/sarif/sarif/v2.1.0/os/schemas/sarif-schema-2.1.0.json",)"
                     R"("runs":[{"tool":{"driver":{"name":"vig","version":")" VIG_VERSION R"(","rules":[)");
        std::string_view ruleSeparator;
        for (const WarningName& rule : known) {
            output.write(
                fmt::format("{}\n"
                            R"({{"id":{},"shortDescription":{{"text":{}}}}})",
                            std::exchange(ruleSeparator, ","), inQuotes(rule.name), inQuotes(rule.meaning)));
        }
        output.write(R"(]}},"columnKind":"unicodeCodePoints","results":[)");
    }

    void write(const SourceText& source, const Findings& findings) override {
        if (!findings.undecided.empty()) {
            gaps.push_back(fmt::format(R"({{"level":"warning","message":{{"text":{}}}}})",
                                       inQuotes(source.name() + ": " + gapsIn(findings))));
        }
        const std::string uri = uriOf(source.name());
        Columns columns(source);
        for (const Finding& finding : findings.all) {
            const auto rule = std::ranges::find(known, finding.name, &WarningName::name) - known.begin();
            const std::string hint = finding.hint.empty() ? "" : " Hint: " + finding.hint;
            output.write(
                fmt::format("{}\n"
                            R"({{"ruleId":{},"ruleIndex":{},"level":"{}","message":{{"text":{}}},"locations":[)"
                            R"({{"physicalLocation":{{"artifactLocation":{{"uri":{}}},"region":{}}}{}}}]{}}})",
                            std::exchange(separator, ","), inQuotes(finding.name), rule,
                            finding.severity == Severity::Error ? "error" : "warning", inQuotes(finding.message + hint),
                            inQuotes(uri), regionOf(columns, finding.place), logicalLocations(finding),
                            finding.witness ? ",\"properties\":{\"witness\":" + jsonOf(*finding.witness) + "}" : ""));
        }
    }

    void end(const FindingCounts&) override {
        output.write("\n]");
        if (!gaps.empty()) {
            output.write(
                fmt::format(R"(,"invocations":[{{"executionSuccessful":true,"toolExecutionNotifications":[{}]}}])",
                            fmt::join(gaps, ",")));
        }
        output.write("}]}\n");
    }

  private:
    Output& output;
    const std::vector<WarningName> known = rules();
    std::string_view separator;     // from the finding before
    std::vector<std::string> gaps;  // notifications of what is not decided, as JSON
};

}  // namespace

std::unique_ptr<FindingWriter> sarifFindings(Output& output) {
    return std::make_unique<SarifFindings>(output);
}

}  // namespace Brenta::OS::VIG::Tool
