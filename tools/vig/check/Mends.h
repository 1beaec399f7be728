#pragma once

#include <json/value.h>

#include <optional>
#include <set>
#include <string>

namespace Brenta::OS::VIG::Tool {

// What can be said of a configuration that the library refuses is what is true of it however it will be mended. So it
// is judged with something in the place of what is refused that the library accepts, in ways that lie as far apart as
// they can: what all of them have in common is said, and what is in between has that too.
enum class Mend {
    Never,          // what is refused keeps its transition from firing
    Maybe,          // each event to which the rest of the transition does not say no fires it, or does not
    MaybeEntering,  // likewise; if its event is refused, it is EnteringState
    Always          // each such event fires it, and what comes then has nothing to do with the rest of the machine
};

struct MendedConfig {
    Json::Value json;
    std::set<std::string> replaced = {};   // the JSON paths of what stands in, of which nothing is known
    std::set<std::string> eventless = {};  // those of transitions of which the event is not known
    bool areStatesKnown = true;            // each transition says from where to where it leads
};

// Mends an element of "configs", which has that path, in the places that are at fault. Returns nothing if it has no
// list of transitions.
std::optional<MendedConfig> mended(const Json::Value& config, const std::string& path,
                                   const std::set<std::string>& faults, Mend mend);

// Tells whether one of the paths is that of the value, or of something that the value lies in.
bool isInside(const std::set<std::string>& paths, const std::string& path);

}  // namespace Brenta::OS::VIG::Tool
