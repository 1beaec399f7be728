#pragma once

#include <string_view>

namespace Brenta::OS::VIG::Tool {

// This is the one list of what `vig check` can warn of: the help, the documentation and the tests are held
// against it.

struct WarningName {
    std::string_view name;
    std::string_view meaning;  // half a sentence, for lists
};

inline constexpr WarningName kWarningNames[] = {
    {"unreachable-state", "the machine never comes to the state"},
    {"shadowed-transition", "earlier transitions always fire instead"},
    {"endless-entering", "a cycle of EnteringState transitions; an error if none of them has a filter"},
    {"never-true", "a filter that is always false, or filters that contradict each other"},
    {"always-true", "a filter that is always true"},
    {"unknown-attribute", "an attribute that the event type does not have"},
    {"wrong-kind", "an attribute that the event type has, but not under the kind that the filter reads"},
    {"missing-attribute", "an action that needs an attribute which the event type does not have"},
    {"number-text", "a number that is not read to its end, or loses precision"},
    {"nul-character", "a NUL in a text: in an operator what follows it is ignored, elsewhere it is cut off by others"},
    {"context-ignored", "a comparison that never looks at the context"},
    {"function-fallback", "an unknown function that reads as 0 or as the empty text"},
    {"trigger-storm", "a trigger again and again while equal events come"},
    {"mixed-processes", "a trigger to which events of different processes lead"},
    {"missing-falls-through", "a number that an event may lack, so that a later transition fires instead"},
    {"unknown-key", "a key that is ignored"},
    {"duplicate-key", "a key that is overwritten by a later one"},
    {"trailing-text", "what stands behind the end of the document, and is not read"},
    {"duplicate-id", "a configuration id that an earlier configuration has"},
    {"truncated-id", "an id with a fraction, which is cut off"},
    {"unused-timeout", "a transition on \"Timeout\", which nothing arms by itself"},
    {"no-way-out", "a state that cannot be left and is not \"end\""},
};

}  // namespace Brenta::OS::VIG::Tool
