#include <fmt/format.h>

#include <algorithm>

#include "tools/vig/decide/ProofWriters.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostStates = 8;     // of those between which a machine stays
constexpr std::size_t kWidestColumn = 72;  // longer names push the answer to the right

// It has what is in question on the left, and the answers to its right, one below the other.
struct Table {
    std::vector<std::pair<std::string, std::string>> rows;

    std::string text() const {
        std::size_t width = 0;
        for (const auto& [left, right] : rows) {
            width = std::max(width, std::min(charactersIn(left), kWidestColumn));
        }
        std::string all;
        for (const auto& [left, right] : rows) {
            const std::size_t gap = width - std::min(charactersIn(left), width) + 2;
            all += "  " + left + std::string(gap, ' ') + right + "\n";
        }
        return all;
    }
};

std::string counted(std::uint64_t number, const std::string& word) {
    return fmt::format("{} {}{}", number, word, number == 1 ? "" : "s");
}

std::string unless(const Proof::Names& context) {
    return context.empty() ? "" : ", unless the context has another " + joined(context, ", ", shownName);
}

// Returns how the recording is replayed, as what follows the rules on the command line.
std::string fileOf(const std::optional<Recording>& recording) {
    std::string text;
    if (recording && !recording->path.empty()) {
        text = "  " + printable(recording->path);
        for (const double draw : recording->draws) {
            text += fmt::format(" --draw {}", draw);
        }
    }
    return text;
}

std::string textOf(const Proof::Claim& claim) {
    std::string text = "never";
    if (claim.answer == Answer::Yes) {
        const std::size_t events = claim.recording->events.size();
        text = events == 0 ? "at the start" : "by " + counted(events, "event");
    } else if (claim.answer == Answer::Unrecordable) {
        text = "only by an infinity, NaN or a text that is no UTF-8";
    } else if (claim.answer == Answer::Undecided) {
        text = "not decided";
    }
    return text + unless(claim.context) + fileOf(claim.recording);
}

std::string textOf(Rate rate) {
    return fmt::format("{} in {} in the long run", counted(rate.triggers, "trigger"), counted(rate.events, "event"));
}

std::string worstOf(const Proof::WorstLoad& load) {
    if (!load.isDecided) {
        return "not decided";
    }
    if (load.rate) {
        const std::string odds = load.odds
                                     ? fmt::format(", if every draw lets it through: odds {:.3g} in each {}",
                                                   *load.odds, load.lap == 1 ? "event" : counted(load.lap, "event"))
                                     : "";
        return "at most " + textOf(*load.rate) + odds + unless(load.context) + fileOf(load.recording);
    }
    const std::string most = *load.most == 0 ? "no trigger" : "at most " + counted(*load.most, "trigger");
    return most + " ever" + unless(load.context) + fileOf(load.recording);
}

std::string distanceOf(const Proof::WorstLoad& load) {
    const std::string file = fileOf(load.distanceRecording);
    return *load.distance == 0
               ? "two triggers can come by one event" + file
               : fmt::format("two triggers are at least {} apart{}", counted(*load.distance, "event"), file);
}

std::string textOf(const Proof& proof, const std::vector<std::size_t>& stay) {
    const auto restCount = std::ranges::count(proof.states, Answer::Yes, &Proof::Claim::answer);
    if (stay.size() > 1 && stay.size() == static_cast<std::size_t>(restCount)) {
        return "nowhere: it can always come back to each of its states";
    }
    std::string text = stay.size() == 1 ? "in " : "between ";
    for (std::size_t index = 0; index < std::min(stay.size(), kMostStates); ++index) {
        const bool isLast = index + 1 == stay.size();
        text += (index == 0 ? "" : isLast ? " and " : ", ") + shownQuoted(proof.stateNames[stay[index]]);
    }
    if (stay.size() > kMostStates) {
        text += fmt::format(" and {}", counted(stay.size() - kMostStates, "other"));
    }
    return text + ", once there" + unless(proof.staysContext);
}

}  // namespace

std::string textOf(const Proof& proof) {
    Table states;
    for (std::size_t state = 0; state < proof.states.size(); ++state) {
        states.rows.emplace_back("  " + shownName(proof.stateNames[state]), textOf(proof.states[state]));
    }
    Table transitions;
    const int digits = static_cast<int>(std::to_string(proof.transitions.size()).size());
    for (std::size_t index = 0; index < proof.transitions.size(); ++index) {
        const TransitionModel& each = proof.config->transitions[index];
        transitions.rows.emplace_back(fmt::format("{:>{}}  {} -> {} on {}", index, digits + 1, shownName(each.from),
                                                  shownName(each.to), nameOf(each.event)),
                                      textOf(proof.transitions[index]));
    }
    Table all;
    if (!proof.stays) {
        all.rows.emplace_back("stays", "not decided");
    } else {
        for (const auto& stay : *proof.stays) {
            all.rows.emplace_back(all.rows.empty() ? "stays" : "", textOf(proof, stay));
        }
    }
    all.rows.emplace_back("load", worstOf(proof.load));
    if (proof.load.distance) {
        all.rows.emplace_back("", distanceOf(proof.load));
    }
    if (!proof.isContextDecided) {
        all.rows.emplace_back("context", "not decided what another one would change");
    }
    return fmt::format("machine {} (id {})\n  states\n{}  transitions\n{}{}", proof.index, proof.config->id,
                       states.text(), transitions.text(), all.text());
}

std::string textOf(const LoadSum& sum) {
    const std::string most = sum.most() == 0 ? "no trigger" : "at most " + counted(sum.most(), "trigger");
    return "all machines together: " +
           (!sum.isDecided()  ? "not decided"
            : sum.isBounded() ? most + " ever"
                              : "at most " + textOf(sum.inTheLongRun())) +
           "\n";
}

}  // namespace Brenta::OS::VIG::Tool
