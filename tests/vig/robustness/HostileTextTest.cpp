#include <gtest/gtest.h>
#include <host/Host.h>
#include <pthread.h>

#include <ctime>
#include <functional>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>

#include "rulesengine/FiniteStateMachine.h"
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
    ASSERT_GE(mutator.documents().size(), 4U);
    for (const std::string& document : mutator.documents()) {
        EXPECT_TRUE(survive(document));
        const std::size_t end = document.find_last_of('}');
        for (std::size_t length = 0; length <= end; ++length) {
            ASSERT_FALSE(survive(document.substr(0, length))) << document.substr(0, length);
        }
    }
}

constexpr std::size_t kMegabyte = std::size_t{1} << 20;

std::string repeated(std::string_view piece, std::size_t size) {
    std::string text;
    while (text.size() < size) {
        text += piece;
    }
    return text;
}

TEST_F(HostileText, LargeTextsOfOneKindTakeTimeInProportion) {
    const std::string open = R"({"configs":[],"x":[1)";
    const auto secondsFor = [&](const char* piece, std::size_t size) {
        const std::clock_t begin = std::clock();
        survive(open + "/*" + repeated(" ", size) + "\n*/" + repeated(piece, size) + "]}");
        survive(repeated(piece, size));
        return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
    };
    for (const char* piece : {"/**/", "//\n", ",[]", ",{}", ",\"\\u0041\"", " ", ",1.5", ",[[[[[[[[1]]]]]]]]", "["}) {
        // Sixteen times as long if it were quadratic; the machine may have done something else meanwhile.
        constexpr double kAlways = 0.05;
        double ratio = 16;
        for (int tries = 0; tries < 3 && ratio > 10; ++tries) {
            ratio = secondsFor(piece, 4 * kMegabyte) / (secondsFor(piece, kMegabyte) + kAlways);
        }
        EXPECT_LE(ratio, 10) << piece;
    }
}

void onThreadWithStack(std::size_t bytes, const std::function<void()>& work) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, bytes), 0);
    const auto run = [](void* argument) -> void* {
        (*static_cast<const std::function<void()>*>(argument))();
        return nullptr;
    };
    pthread_t thread{};
    ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)), 0);
    pthread_join(thread, nullptr);
}

TEST_F(HostileText, TheDeepestDocumentNeedsAStackOf640Kilobytes) {
    const std::pair<const char*, const char*> kinds[] = {{R"({"k":)", "}"}, {"[", "]"}, {R"([{"k":)", "}]"}};
    for (const auto& [open, close] : kinds) {
        const std::size_t levels = 996 / std::string_view(close).size();  // 1000 with those around it
        std::string begin;
        std::string end;
        for (std::size_t level = 0; level < levels; ++level) {
            begin += open;
            end += close;
        }
        const std::string deep = begin + "1" + end;
        for (const std::string& text : {R"({"x":)" + deep + R"(,"configs":[]})", R"({"configs":[{"x":)" + deep + "}]}",
                                        begin + begin + "1", begin + "x"}) {
            support::peakMemory(
                [&] { onThreadWithStack(std::size_t{640} << 10, [&] { manager.parseResponse(text); }); });
            EXPECT_FALSE(HasFailure()) << text;
        }
    }
}

TEST_F(HostileText, ADocumentNeedsAtMostAHundredAndFiftyTimesItsSize) {
    if (support::kHasSanitizer) {
        GTEST_SKIP() << "the sanitizer takes memory of its own";
    }
    // What is refused is shown in the log, indented, if it is not nested deeper than 32 levels.
    const auto deep = [](const std::string& more) { return std::string(31, '[') + "1" + more + std::string(31, ']'); };
    const std::string open = R"({"configs":[],"x":[1)";
    const std::string transition = R"({"from_state":"","to_state":"","event":"Test","filters":[],"actions":[]},)";
    const std::string texts[] = {
        open + repeated(",1", kMegabyte) + "]}",
        open + repeated(",[]", kMegabyte) + "]}",
        open + repeated(",{}", kMegabyte) + "]}",
        open + repeated(",[[[[[[[[1]]]]]]]]", kMegabyte) + "]}",
        R"({"configs":[)" + deep(repeated(",1", kMegabyte)) + "]}",
        R"({"configs":[)" + deep(repeated(",[]", kMegabyte)) + "]}",
        R"({"configs":[)" + repeated("," + deep(""), kMegabyte).substr(1) + "]}",
        R"({"configs":[{"id":1,"payload":{"id":1,"data":{"transitions":[)" + repeated(transition, kMegabyte) + "]}}}]}",
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
