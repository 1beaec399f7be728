#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "tools/vig/decide/ProofWriters.h"
#include "tools/vig/events/EventNames.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::size_t kMostStates = 8;     // of those between which a machine stays
constexpr std::size_t kWidestColumn = 72;  // longer names push the answer to the right

// It has what is in question on the left, the answers beside it, and how they are replayed.
struct Table {
    std::vector<std::array<std::string, 3>> rows;

    std::string text() const {
        std::array<std::size_t, 3> widths = {};
        for (const auto& row : rows) {
            // Nothing has to line up behind the last text of a row.
            for (std::size_t column = 0; column + 1 < row.size() && !row[column + 1].empty(); ++column) {
                const std::size_t width = charactersIn(row[column]);
                widths[column] = std::max(widths[column], width > kWidestColumn ? 0 : width);
            }
        }
        std::string all;
        for (const auto& row : rows) {
            std::string line;
            for (std::size_t column = 0; column < row.size(); ++column) {
                const std::size_t width = charactersIn(row[column]);
                line += "  " + row[column] + std::string(widths[column] - std::min(widths[column], width), ' ');
            }
            all += line.substr(0, line.find_last_not_of(' ') + 1) + "\n";
        }
        return all;
    }
};

std::string counted(std::uint64_t number, const std::string& word) {
    return fmt::format("{} {}{}", number, word, number == 1 ? "" : "s");
}

std::string unless(const Proof::Names& context) {
    return context.empty() ? "" : ", unless the context has a certain " + joined(context, ", ", shownName);
}

// Returns how the recording is replayed, as what follows the rules on the command line.
std::string fileOf(const std::optional<Recording>& recording) {
    std::string text;
    if (recording && !recording->path.empty()) {
        text = printable(recording->path);
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
    return text + unless(claim.context);
}

std::string textOf(Rate rate) {
    return fmt::format("{} in {} in the long run", counted(rate.triggers, "trigger"), counted(rate.events, "event"));
}

std::string textOf(const Proof::WorstLoad& load) {
    if (!load.isDecided) {
        return "not decided";
    }
    if (load.rate) {
        const std::string odds = load.odds ? fmt::format(", if every draw lets it through (odds {:.3g} a round of {})",
                                                         *load.odds, counted(load.lap, "event"))
                                           : "";
        return "at most " + textOf(*load.rate) + odds + unless(load.context);
    }
    const std::string most = *load.most == 0 ? "no trigger" : "at most " + counted(*load.most, "trigger");
    return most + " ever" + unless(load.context);
}

std::string textOf(const Proof& proof, std::size_t index) {
    const std::vector<std::size_t>& stay = (*proof.stays)[index];
    const auto restCount = std::ranges::count(proof.states, Answer::Yes, &Proof::Claim::answer);
    if (stay.size() > 1 && stay.size() == static_cast<std::size_t>(restCount)) {
        return "nowhere: it can always come back to each of its states" + unless(proof.staysContext[index]);
    }
    std::string text = stay.size() == 1 ? "in " : "between ";
    for (std::size_t place = 0; place < std::min(stay.size(), kMostStates); ++place) {
        const bool isLast = place + 1 == stay.size();
        text += (place == 0 ? "" : isLast ? " and " : ", ") + shownQuoted(proof.stateNames[stay[place]]);
    }
    if (stay.size() > kMostStates) {
        text += fmt::format(" and {}", counted(stay.size() - kMostStates, "other"));
    }
    return text + ", once there" + unless(proof.staysContext[index]);
}

Table conclusionsOf(const Proof& proof) {
    Table table;
    for (std::size_t index = 0; proof.stays && index < proof.stays->size(); ++index) {
        table.rows.push_back({index == 0 ? "stays" : "", textOf(proof, index), ""});
    }
    if (!proof.stays) {
        table.rows.push_back({"stays", "not decided", ""});
    }
    const Proof::WorstLoad& load = proof.load;
    table.rows.push_back({"load", textOf(load), fileOf(load.recording)});
    if (load.distance) {
        const std::string apart = fmt::format("two triggers are at least {} apart", counted(*load.distance, "event"));
        table.rows.push_back(
            {"", *load.distance == 0 ? "two triggers can come by one event" : apart, fileOf(load.distanceRecording)});
    }
    if (!proof.isContextDecided) {
        table.rows.push_back({"context", "not decided what another one would change", ""});
    }
    return table;
}

}  // namespace

std::string textOf(const Proof& proof) {
    Table states;
    for (std::size_t state = 0; state < proof.states.size(); ++state) {
        const Proof::Claim& claim = proof.states[state];
        states.rows.push_back({"  " + shownState(proof.stateNames[state]), textOf(claim), fileOf(claim.recording)});
    }
    Table transitions;
    const std::size_t digits = std::to_string(proof.transitions.size()).size();
    for (std::size_t index = 0; index < proof.transitions.size(); ++index) {
        const TransitionModel& each = proof.config->transitions[index];
        const Proof::Claim& claim = proof.transitions[index];
        const std::string line = each.where.starts_with("line") ? " (" + each.where + ")" : "";
        transitions.rows.push_back({fmt::format("{:>{}}  {} -> {} on {}{}", index, digits + 2, shownState(each.from),
                                                shownState(each.to), nameOf(each.event), line),
                                    textOf(claim), fileOf(claim.recording)});
    }
    return fmt::format("machine {} (id {})\n  states\n{}  transitions\n{}{}", proof.index, proof.config->id,
                       states.text(), transitions.text(), conclusionsOf(proof).text());
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
