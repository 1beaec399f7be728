#include "tools/vig/decide/Proof.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

#include "tests/support/Documents.h"
#include "tools/vig/document/Registry.h"

namespace Brenta::OS::VIG::Tool {

namespace {

// Decides about one document, and has the library rehearse another one.
Proof proofOf(const std::string& decided, const std::string& rehearsed, const Interruption* interruption) {
    const VIGParserConfig registry = libraryRegistry();
    const Catalogue catalogue = Catalogue::builtIn();
    const AttributeSet context;
    const DocumentModel document("", decided);
    Effort effort{.interruption = interruption};
    Effort forContexts;
    const DocumentModel other("", rehearsed);
    Rehearsal rehearsal(other.configs, context);
    return prove(document.configs[0], 0, {registry, catalogue, context, effort}, forContexts, rehearsal);
}

std::string leadingTo(const std::string& state, const std::string& actions, const std::string& further) {
    return support::documentOf({support::transition("start", state, "ProcessMemoryHeartBeat", "[]", actions), further});
}

const std::string kTriggers = R"([{"name":"TriggerVelora"}])";
const std::string kFurther = support::transition("start", "end", "Test");

TEST(Proof, IsNoneWithoutTheLibrary) {
    const std::string once = leadingTo("end", kTriggers, kFurther);
    const std::string again = leadingTo("start", kTriggers, kFurther);
    const std::tuple<std::string, std::string, const char*> cases[] = {
        {once, once, ""},
        {again, again, ""},
        {once, leadingTo("end", "[]", kFurther), "the worst load by event 1"},
        {once, support::documentOf({support::transition("end", "end", "Test"), kFurther}),
         "configs[0].payload.data.transitions[0] by event 1"},
        {again, leadingTo("start", kTriggers, support::transition("other", "end", "Test")), "state \"end\" by event 1"},
        {again, once, "the shortest distance by event 2"},
    };
    for (const auto& [decided, rehearsed, fault] : cases) {
        EXPECT_EQ(proofOf(decided, rehearsed, nullptr).fault, fault) << rehearsed;
    }
}

TEST(Proof, IsGivenUpWhenItIsInterrupted) {
    const std::string once = leadingTo("end", kTriggers, kFurther);
    Interruption interruption;
    EXPECT_TRUE(proofOf(once, once, &interruption).isDecided());
    interruption.request();
    const Proof proof = proofOf(once, once, &interruption);
    EXPECT_EQ(proof.states[Behaviour::kEnd].answer, Answer::Undecided);
    EXPECT_FALSE(proof.stays);
    EXPECT_FALSE(proof.load.isDecided);
}

TEST(Proof, IsGivenUpBehindAChainOfAnyLength) {
    constexpr int kStates = 100'000;
    ConfigModel config{};
    for (int state = 0; state < kStates; ++state) {
        config.transitions.push_back({{},
                                      state == 0 ? "start" : std::to_string(state),
                                      std::to_string(state + 1),
                                      RulesEngine::EventType::EnteringState,
                                      {},
                                      {},
                                      nullptr});
    }
    const VIGParserConfig registry = libraryRegistry();
    const Catalogue catalogue;
    const AttributeSet context;
    Effort none{0};
    const Surroundings surroundings{registry, catalogue, context, none};
    Behaviour machine(config, surroundings);
    EXPECT_EQ(machine.reaches(machine.stateCount() - 1), Answer::Undecided);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
