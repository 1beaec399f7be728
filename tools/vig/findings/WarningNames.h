#pragma once

#include <string_view>

namespace Brenta::OS::VIG::Tool {

// This is the one list of what `vig check` can warn of: the help, the documentation and the tests are held
// against it.

// It says what must not be at fault for a warning to be told: the place itself, the event of its transition as well,
// the transition and those that it is said to come after, or everything that can happen.
enum class Basis { Place, Event, Earlier, Machine };

struct WarningName {
    std::string_view name;
    std::string_view meaning;  // half a sentence, for lists
    Basis basis = Basis::Machine;
};

inline constexpr WarningName kWarningNames[] = {
    {"unreachable-state", "the machine never comes to the state"},
    {"shadowed-transition", "earlier transitions always fire instead", Basis::Earlier},
    {"endless-entering", "a cycle of EnteringState transitions; an error if none of them has a filter"},
    {"never-true", "a filter that is always false, or filters that contradict each other", Basis::Event},
    {"always-true", "a filter that is always true", Basis::Event},
    {"inverted-share", "a draw that lets the larger share through"},
    {"exact-draw", "a draw that is compared for equality", Basis::Place},
    {"repeated-draw", "a share that is drawn again on the way, so that both together let less through"},
    {"unknown-attribute", "an attribute that the event type does not have", Basis::Event},
    {"wrong-kind", "an attribute that the event type has, but not under the kind that the filter reads", Basis::Event},
    {"operand-type", "an operand that has the type of another one, such as a number that is looked for as an attribute",
     Basis::Event},
    {"wrong-unit", "a number of another unit than the attribute", Basis::Event},
    {"missing-attribute", "an action that needs an attribute which the event type does not have", Basis::Event},
    {"number-text", "a number that is not read to its end, or loses precision", Basis::Place},
    {"nul-character", "a NUL in a text: in an operator what follows it is ignored, elsewhere it is cut off by others",
     Basis::Place},
    {"invisible-character", "a name with a blank at an end, or with a character that is not seen", Basis::Place},
    {"context-ignored", "a comparison that never looks at the context", Basis::Event},
    {"function-fallback", "an unknown function that reads as 0 or as the empty text", Basis::Place},
    {"trigger-storm", "a trigger again and again while equal events come"},
    {"mixed-processes", "a trigger to which events of different processes lead"},
    {"missing-falls-through", "a number that an event may lack, so that a later transition fires instead"},
    {"no-action", "a machine in which nothing has an action"},
    {"copied-configuration", "a machine that does the same as an earlier one"},
    {"unknown-key", "a key that is ignored", Basis::Place},
    {"duplicate-key", "a key that is overwritten by a later one", Basis::Place},
    {"trailing-text", "what stands behind the end of the document, and is not read", Basis::Place},
    {"duplicate-id", "a configuration id that an earlier configuration has", Basis::Place},
    {"truncated-id", "an id with a fraction, which is cut off", Basis::Place},
    {"unused-timeout", "a transition on \"Timeout\", which nothing arms by itself", Basis::Place},
    {"no-way-out", "a state that cannot be left and is not \"end\""},
};

}  // namespace Brenta::OS::VIG::Tool
