#include <gtest/gtest.h>
#include <host/Host.h>
#include <pthread.h>

#include <ctime>
#include <iostream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "rulesengine/FiniteStateMachine.h"
#include "tests/support/Documents.h"
#include "tests/support/Mutator.h"
#include "tests/support/PeakMemory.h"
#include "tests/support/TestEvent.h"
#include "vig/EventTypeNames.h"
#include "vig/VIGManager.h"

namespace {

using Brenta::OS::VIG::VIGManager;

class HostileText : public testing::Test {
  protected:
    HostileText() {
        host::setLogSink([](int, std::string_view, std::string_view) {});
    }
    ~HostileText() override { host::setLogSink(nullptr); }

    std::size_t draw(std::size_t bound) { return mutator.draw(bound); }

    // Parses, and gives the machines of an accepted document something to do. Returns whether it was accepted.
    bool survive(const std::string& text) {
        const auto configs = manager.parseResponse(text);
        for (const auto& config : configs) {
            auto& machine = *config->getConfigPayload()->getFiniteStateMachine();
            machine.start();
            for (const auto& [type, name] : Brenta::OS::VIG::kEventTypeNames.pairs) {
                if (type != Brenta::OS::RulesEngine::EventType::Timeout) {
                    machine.onEvent(support::TestEvent({}, type));
                }
            }
        }
        return !configs.empty();
    }

    support::Mutator mutator;
    VIGManager manager;
};

TEST_F(HostileText, TenMillionRandomBytesAreSurvived) {
    for (std::size_t bytes = 0; bytes < 10'000'000;) {
        std::string text(1 + draw(draw(10) == 0 ? 100'000 : 100), '\0');
        for (char& byte : text) {
            byte = static_cast<char>(draw(256));
        }
        if (draw(2) == 0) {
            text.insert(0, R"({"configs":[)");  // deep enough to leave the first byte behind
        }
        bytes += text.size();
        EXPECT_FALSE(survive(text));
    }
}

TEST_F(HostileText, EveryTruncationOfTheExamplesIsRefused) {
    const auto documents = support::exampleDocuments();
    ASSERT_GE(documents.size(), 4U);
    for (const std::string& document : documents) {
        EXPECT_TRUE(survive(document));
        const std::size_t end = document.find_last_of('}');
        for (std::size_t length = 0; length <= end; ++length) {
            ASSERT_FALSE(survive(document.substr(0, length))) << document.substr(0, length);
        }
    }
}

std::string repeated(std::string_view piece, std::size_t times) {
    std::string text;
    for (; times > 0; --times) {
        text += piece;
    }
    return text;
}

std::string megabytesOf(std::string_view piece, std::size_t megabytes) {
    return repeated(piece, (megabytes << 20) / piece.size() + 1);
}

const std::string kOpen = R"({"configs":[],"x":[1)";

TEST_F(HostileText, LargeTextsOfOneKindTakeTimeInProportion) {
    const auto secondsFor = [&](const char* piece, std::size_t megabytes) {
        const std::clock_t begin = std::clock();
        const std::string text = megabytesOf(piece, megabytes);
        survive(kOpen + "/*" + megabytesOf(" ", megabytes) + "\n*/" + text + "]}");
        survive(text);
        return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    };
    for (const char* piece : {"/**/", "//\n", ",[]", ",{}", ",\"\\u0041\"", " ", ",1.5", ",[[[[[[[[1]]]]]]]]", "["}) {
        // Sixteen times as long if it were quadratic; the machine may have done something else meanwhile.
        constexpr double kAlways = 0.05;
        double ratio = 16;
        for (int tries = 0; tries < 3 && ratio > 10; ++tries) {
            ratio = secondsFor(piece, 4) / (secondsFor(piece, 1) + kAlways);
        }
        EXPECT_LE(ratio, 10) << piece;
    }
}

TEST_F(HostileText, TheDeepestDocumentNeedsAStackOf640Kilobytes) {
    const std::pair<const char*, const char*> kinds[] = {{R"({"k":)", "}"}, {"[", "]"}, {R"([{"k":)", "}]"}};
    for (const auto& [open, close] : kinds) {
        const std::size_t levels = 996 / std::string_view(close).size();  // 1000 with those around it
        const std::string begin = repeated(open, levels);
        const std::string deep = begin + "1" + repeated(close, levels);
        for (const std::string& text : {R"({"x":)" + deep + R"(,"configs":[]})", R"({"configs":[{"x":)" + deep + "}]}",
                                        begin + begin + "1", begin + "x"}) {
            SCOPED_TRACE(text.substr(0, 30) + "..." + text.substr(text.size() - 3));
            support::peakMemory([&] {
                pthread_attr_t attributes;
                pthread_getattr_default_np(&attributes);
                pthread_attr_setstacksize(&attributes, std::size_t{640} << 10);
                pthread_setattr_default_np(&attributes);
                std::thread([&] { manager.parseResponse(text); }).join();
            });
        }
    }
}

TEST_F(HostileText, ADocumentNeedsAtMostAHundredAndFiftyTimesItsSize) {
    if (support::kHasSanitizer) {
        GTEST_SKIP() << "the sanitizer takes memory of its own";
    }
    // What is refused is shown in the log, indented, if it is not nested deeper than 32 levels.
    const auto deep = [](const std::string& more) { return repeated("[", 31) + "1" + more + repeated("]", 31); };
    const std::string transition = R"({"from_state":"","to_state":"","event":"Test","filters":[],"actions":[]},)";
    const std::string texts[] = {
        kOpen + megabytesOf(",1", 1) + "]}",
        kOpen + megabytesOf(",[]", 1) + "]}",
        kOpen + megabytesOf(",{}", 1) + "]}",
        kOpen + megabytesOf(",[[[[[[[[1]]]]]]]]", 1) + "]}",
        R"({"configs":[)" + deep(megabytesOf(",1", 1)) + "]}",
        R"({"configs":[)" + deep(megabytesOf(",[]", 1)) + "]}",
        R"({"configs":[)" + megabytesOf("," + deep(""), 1).substr(1) + "]}",
        R"({"configs":[{"id":1,"payload":{"id":1,"data":{"transitions":[)" + megabytesOf(transition, 1) + "]}}}]}",
    };
    const std::size_t before = support::peakMemory([] {});
    for (const std::string& text : texts) {
        EXPECT_LT(support::peakMemory([&] { manager.parseResponse(text); }), before + 150 * text.size())
            << text.substr(0, 100);
    }
}

TEST_F(HostileText, AHundredThousandMutationsAreSurvived) {
    int accepted = 0;
    for (int round = 0; round < 100'000; ++round) {
        accepted += survive(mutator.mutated()) ? 1 : 0;
    }
    std::cout << accepted << " of 100000 accepted\n";
    EXPECT_GT(accepted, 1000) << "mutations that are all refused try little";
}

}  // namespace
