#include <fmt/format.h>

#include <string_view>

#include "tools/vig/decide/ProofWriters.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

std::string_view wordFor(Answer answer) {
    switch (answer) {
        case Answer::Yes:
            return "yes";
        case Answer::Unrecordable:
            return "unrecordable";
        case Answer::Undecided:
            return "not decided";
        case Answer::No:
            break;
    }
    return "no";
}

std::string jsonOf(const Recording& recording) {
    const std::string path = recording.path.empty() ? "" : ",\"path\":" + inQuotes(recording.path);
    return fmt::format(R"({{"events":{},"draws":[{}]{}}})",
                       jsonArray(recording.events, [](const EventRecord& each) { return jsonOf(each); }),
                       fmt::join(recording.draws, ","), path);
}

constexpr auto kNames = [](const Proof::Names& names) { return jsonArray(names, inQuotes); };

// Returns the end of the object of which `names` are the first members.
std::string jsonOf(const Proof::Claim& claim, std::string_view verb) {
    std::string json = fmt::format(R"("{}":"{}")", verb, wordFor(claim.answer));
    if (claim.recording) {
        json += fmt::format(R"(,"events":{},"witness":{})", claim.recording->events.size(), jsonOf(*claim.recording));
    }
    return json + ",\"context\":" + kNames(claim.context) + "}";
}

std::string jsonOf(Rate rate) {
    return fmt::format(R"({{"triggers":{},"events":{}}})", rate.triggers, rate.events);
}

std::string jsonOf(const Proof::WorstLoad& load) {
    if (!load.isDecided) {
        return R"({"decided":false})";
    }
    std::string json = R"({"decided":true,)";
    json += load.rate ? "\"rate\":" + jsonOf(*load.rate) : fmt::format(R"("triggers":{})", *load.most);
    json += load.odds ? fmt::format(R"(,"odds":{})", *load.odds) : "";
    json += ",\"distance\":" + (load.distance ? std::to_string(*load.distance) : "null");
    json += load.recording ? ",\"witness\":" + jsonOf(*load.recording) : "";
    json += load.distanceRecording ? ",\"distance_witness\":" + jsonOf(*load.distanceRecording) : "";
    return json + ",\"context\":" + kNames(load.context) + "}";
}

}  // namespace

std::string recordsOf(const Recording& recording) {
    std::string lines;
    for (const EventRecord& each : recording.events) {
        lines += jsonOf(each) + "\n";
    }
    return lines;
}

std::string jsonOf(const LoadSum& sum) {
    if (!sum.isDecided()) {
        return "null";
    }
    return sum.isBounded() ? fmt::format(R"({{"triggers":{}}})", sum.most())
                           : fmt::format(R"({{"rate":{}}})", jsonOf(sum.inTheLongRun()));
}

std::string jsonOf(const Proof& proof, const std::string& file) {
    std::string json = fmt::format("{{\"file\":{},\"index\":{},\"config\":{},\"states\":[", inQuotes(file), proof.index,
                                   proof.config->id);
    for (std::size_t state = 0; state < proof.states.size(); ++state) {
        json += fmt::format("{}\n{{\"name\":{},{}", state == 0 ? "" : ",", inQuotes(proof.stateNames[state]),
                            jsonOf(proof.states[state], "reached"));
    }
    json += "\n],\"transitions\":[";
    for (std::size_t index = 0; index < proof.transitions.size(); ++index) {
        const TransitionModel& transition = proof.config->transitions[index];
        json += fmt::format("{}\n{{\"path\":{},\"from\":{},\"to\":{},\"event\":{},{}", index == 0 ? "" : ",",
                            inQuotes(transition.place.path), inQuotes(transition.from), inQuotes(transition.to),
                            inQuotes(nameOf(transition.event)), jsonOf(proof.transitions[index], "fires"));
    }
    const auto nameOfState = [&](std::size_t state) { return inQuotes(proof.stateNames[state]); };
    const auto listOf = [&](const auto& states) { return jsonArray(states, nameOfState); };
    return json + fmt::format("\n],\"stays\":{},\"stays_context\":{},\n\"load\":{},\"context_decided\":{}}}",
                              proof.stays ? jsonArray(*proof.stays, listOf) : "null",
                              jsonArray(proof.staysContext, kNames), jsonOf(proof.load), proof.isContextDecided);
}

}  // namespace Brenta::OS::VIG::Tool
