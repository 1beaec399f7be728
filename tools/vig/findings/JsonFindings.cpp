#include <fmt/format.h>

#include <string_view>
#include <utility>
#include <vector>

#include "tools/vig/findings/FindingWriters.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

std::string jsonOf(const TransitionName& transition) {
    return fmt::format(R"({{"from":{},"to":{},"line":{}}})", inQuotes(transition.from), inQuotes(transition.to),
                       transition.line);
}

class JsonFindings final : public FindingWriter {
  public:
    explicit JsonFindings(Output& output) : output(output) { output.write(R"({"findings":[)"); }

    void write(const SourceText& source, const Findings& findings) override {
        for (const UndecidedConfig& each : findings.undecided) {
            undecided.push_back(fmt::format(R"({{"file":{},"path":{},"id":{}}})", inQuotes(source.name()),
                                            inQuotes(each.path), each.id));
        }
        for (const Finding& finding : findings.all) {
            const auto start = source.positionOf(finding.place.begin);
            const auto end = source.positionOf(finding.place.end);
            output.write(fmt::format(
                "{}\n"
                R"({{"file":{},"line":{},"column":{},"end_line":{},"end_column":{},"severity":"{}",)"
                R"("name":{},"path":{},"message":{},"hint":{}{}{}}})",
                std::exchange(separator, ","), inQuotes(source.name()), start.line, start.column, end.line, end.column,
                finding.severity == Severity::Error ? "error" : "warning", inQuotes(finding.name),
                inQuotes(finding.place.path), inQuotes(finding.message), inQuotes(finding.hint),
                finding.transition ? ",\"transition\":" + jsonOf(*finding.transition) : "",
                finding.witness ? ",\"witness\":" + jsonOf(*finding.witness) : ""));
        }
    }

    void end(const FindingCounts& counts) override {
        output.write(fmt::format("\n],\"errors\":{},\"warnings\":{},\"files\":{},\"undecided\":[{}]}}\n", counts.errors,
                                 counts.warnings, counts.files, fmt::join(undecided, ",")));
    }

  private:
    Output& output;
    std::string_view separator;          // from the finding before
    std::vector<std::string> undecided;  // of all files, as JSON
};

}  // namespace

std::string jsonOf(const Witness& witness) {
    return "{\"events\":" + jsonArray(witness.events, [](const EventRecord& each) { return jsonOf(each); }) +
           ",\"draws\":" + jsonArray(witness.draws, [](double each) { return fmt::format("{}", each); }) + "}";
}

std::unique_ptr<FindingWriter> jsonFindings(Output& output) {
    return std::make_unique<JsonFindings>(output);
}

}  // namespace Brenta::OS::VIG::Tool
