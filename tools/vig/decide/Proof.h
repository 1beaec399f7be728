#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/decide/Behaviour.h"
#include "tools/vig/decide/Load.h"
#include "tools/vig/decide/Rehearsal.h"
#include "tools/vig/document/RuleModel.h"
#include "tools/vig/events/EventRecord.h"

namespace Brenta::OS::VIG::Tool {

// It is what somebody can replay to see that an answer is true.
struct Recording {
    std::vector<EventRecord> events;
    std::vector<double> draws;  // of all machines of the document, in order; the last one is drawn for ever
    std::string path = {};      // of the file that has the events, if there is one
};

// It is what was decided of one machine. The library has done all that the recordings are said to show.
struct Proof {
    using Names = std::vector<std::string>;

    // It says whether a state is reached or a transition fires.
    struct Claim {
        Answer answer;
        std::optional<Recording> recording;  // exactly if the answer is yes
        Names context;                       // attributes such as "int64 limit", with which the answer is another one
    };

    struct WorstLoad {
        bool isDecided = false;  // otherwise nothing is known
        std::optional<std::uint64_t> most = {};
        std::optional<Rate> rate = {};
        std::size_t lap = 0;              // so many events go once round, if there is a rate
        std::optional<double> odds = {};  // that all draws of a lap let it through, if there are any
        std::optional<std::size_t> distance = {};
        std::optional<Recording> recording = {};  // if it asks for any
        std::optional<Recording> distanceRecording = {};
        Names context = {};
    };

    std::size_t index = 0;
    const ConfigModel* config = nullptr;
    std::vector<std::string_view> stateNames = {};
    std::vector<Claim> states = {};
    std::vector<Claim> transitions = {};
    std::optional<std::vector<std::vector<std::size_t>>> stays = {};  // nothing if it is not decided
    std::vector<Names> staysContext = {};                             // of each set of states
    WorstLoad load = {};
    bool isContextDecided = false;
    std::string fault = {};  // what was decided and the library did not do; nothing else counts then

    bool isDecided() const;
};

// Decides all that about the machine, which is that one of the document that is rehearsed. `forContexts` is the effort
// to decide again with other contexts.
Proof prove(const ConfigModel& config, std::size_t machine, const Surroundings& surroundings, Effort& forContexts,
            Rehearsal& rehearsal);

}  // namespace Brenta::OS::VIG::Tool
