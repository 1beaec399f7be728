#include <fmt/format.h>

#include <string_view>

#include "tools/vig/diff/DiffWriters.h"
#include "tools/vig/events/EventRecord.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

std::string_view wordFor(MachineDiff::Verdict verdict) {
    switch (verdict) {
        case MachineDiff::Verdict::Different:
            return "different";
        case MachineDiff::Verdict::Unrecordable:
            return "unrecordable";
        case MachineDiff::Verdict::Undecided:
            return "not decided";
        case MachineDiff::Verdict::Same:
            break;
    }
    return "same";
}

std::string jsonOf(const std::optional<std::size_t>& index) {
    return index ? std::to_string(*index) : "null";
}

std::string jsonOf(const ConfigDiff& config) {
    const MachineDiff& diff = config.diff;
    std::string json = fmt::format(R"({{"id":{},"old":{},"new":{},"verdict":"{}")", config.id,
                                   jsonOf(config.indices[0]), jsonOf(config.indices[1]), wordFor(diff.verdict));
    const bool isDifferent = diff.verdict == MachineDiff::Verdict::Different;
    if (isDifferent || diff.verdict == MachineDiff::Verdict::Undecided) {
        json += fmt::format(R"(,"events":{})", diff.events);
    }
    if (!isDifferent) {
        return json + "}";
    }
    json +=
        fmt::format(R"(,"shortest":{},"same_odds":{},"changes":{})", diff.isShortest, diff.areOddsSame,
                    jsonArray(diff.changes, [&](const auto& each) { return inQuotes(wordsFor(each, diff.states)); }));
    json +=
        fmt::format(R"(,"recording":{{"events":{},"draws":{{"old":[{}],"new":[{}]}}}})",
                    jsonArray(diff.plan.events, [](const EventRecord& each) { return Tool::jsonOf(each); }),
                    fmt::join(config.accounts[0].witness.draws, ","), fmt::join(config.accounts[1].witness.draws, ","));
    const auto explanation = [&](std::size_t side) { return jsonArray(config.accounts[side].explanation, inQuotes); };
    return json + fmt::format(R"(,"explanation":{{"old":{},"new":{}}}}})", explanation(0), explanation(1));
}

}  // namespace

std::string jsonOf(const DocumentDiff& diff, const Both<std::string>& files) {
    return fmt::format("{{\"old\":{},\"new\":{},\"machines\":[{}\n]}}\n", inQuotes(files[0]), inQuotes(files[1]),
                       joined(diff.configs, ",", [](const ConfigDiff& each) { return "\n" + jsonOf(each); }));
}

}  // namespace Brenta::OS::VIG::Tool
