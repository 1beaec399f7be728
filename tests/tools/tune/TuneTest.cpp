#include <gmock/gmock.h>
#include <json/value.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/Documents.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/tools/ToolRun.h"
#include "tools/vig/tune/Certainty.h"
#include "tools/vig/tune/Thresholds.h"
#include "vig/parsers/JsonText.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using namespace support;

constexpr auto kInteger = FilterValueType::Integer;
constexpr auto kDouble = FilterValueType::Double;

TEST(Thresholds, RoundestNumberHasTheFewestDigits) {
    const auto ofIntegers = [](std::int64_t low, std::int64_t high) {
        return textOf(roundestIn(rankOf(low), rankOf(high), kInteger), kInteger);
    };
    const auto ofDoubles = [](double low, double high) {
        return textOf(roundestIn(rankOf(low), rankOf(high), kDouble), kDouble);
    };
    EXPECT_EQ(ofIntegers(183'412, 183'511), "183500");
    EXPECT_EQ(ofIntegers(-199, -101), "-110");
    EXPECT_EQ(ofIntegers(-1, 7), "0");
    EXPECT_EQ(ofIntegers(INT64_MIN, INT64_MIN + 1), "-9223372036854775807");
    EXPECT_EQ(ofDoubles(0.0911, 0.1402), "0.1");
    EXPECT_EQ(ofDoubles(-12.37, -12.29), "-12.3");
    EXPECT_EQ(ofDoubles(0.1, 0.1), "0.1");
    EXPECT_EQ(ofDoubles(0.3, std::nextafter(0.3, 1)), "0.3");
    for (const auto type : {kInteger, kDouble}) {
        for (const double number : {-20.0, 0.0, 20.0}) {
            const Rank rank = type == kDouble ? rankOf(number) : rankOf(static_cast<std::int64_t>(number));
            EXPECT_LT(roundBelow(rank, type), rank);
            EXPECT_GT(roundAbove(rank, type), rank);
            EXPECT_EQ(digitsOf(rank, type), number == 0 ? 0u : 1u);
        }
    }
}

TEST(Thresholds, SampleIsTheSameWhateverTheOrderAndTheParts) {
    constexpr Rank kCount = 3 * RankSample::MOST;
    RankSample all;
    RankSample odd;
    RankSample merged;
    for (Rank rank = 0; rank < kCount; ++rank) {
        all.add(rank);
        all.add(rank / 2);
        (rank % 2 == 0 ? merged : odd).add(kCount - 1 - rank);
    }
    merged.merge(odd);
    EXPECT_EQ(all.ranks().size(), RankSample::MOST);
    EXPECT_EQ(all.ranks(), merged.ranks());
    EXPECT_FALSE(merged.isComplete());
    EXPECT_GT(all.ranks()[RankSample::MOST / 2], kCount / 3);
}

TEST(Certainty, IsThatOfTheFormulas) {
    EXPECT_NEAR(shareInterval(4, 40).low, 0.0396, 1e-4);
    EXPECT_NEAR(shareInterval(4, 40).high, 0.2305, 1e-4);
    EXPECT_EQ(shareInterval(0, 40).low, 0);
    EXPECT_EQ(shareInterval(40, 40).high, 1);
    // A count of 9, of Poisson: the score interval is 4.735 to 17.107.
    EXPECT_NEAR(rateInterval(9, 1, 1).low, 4.735, 1e-3);
    EXPECT_NEAR(rateInterval(9, 2, 1).high, 17.107 / 2, 1e-3);
    EXPECT_GT(rateInterval(9, 2, 3).high, rateInterval(9, 2, 1).high);
    const Certainty few = certaintyOf(0.001, 200, shareInterval);
    EXPECT_FALSE(few.fromNone || few.fromDouble);
    EXPECT_NEAR(few.needed, 7668, 1);
    const Certainty more = certaintyOf(0.001, 5000, shareInterval);
    EXPECT_TRUE(more.fromNone && !more.fromDouble);
    EXPECT_TRUE(certaintyOf(0.001, 7669, shareInterval).fromDouble);
}

class Tune : public testing::Test {
  protected:
    Json::Value run(std::vector<std::string> arguments) {
        const MemoryFile out;
        const Interruption interruption;
        runTool(arguments, {STDIN_FILENO, out.descriptor, STDERR_FILENO}, interruption);
        Json::Value json;
        EXPECT_FALSE(readJson(out.content(), json)) << out.content();
        return json;
    }

    void record(int devices, int events, int most) {
        for (int device = 0; device < devices; ++device) {
            std::string text;
            for (int i = 0; i < events; ++i) {
                const auto value = static_cast<int>(random() % static_cast<unsigned>(most));
                text += R"({"event":"ProcessMemoryHeartBeat","int64":{"vmSwapKB":0,"vmRssKB":)" +
                        std::to_string(value) + R"(},"double":{"load":)" + std::to_string(value) +
                        R"(.5},"string":{"processName":"p"}})" + "\n";
                highest.resize(static_cast<std::size_t>(device) + 1);
                highest.back() = std::max(highest.back(), value);
            }
            files.push_back(folder.write("d" + std::to_string(device), text));
        }
    }

    const TemporaryFolder folder;
    std::minstd_rand random;
    std::vector<std::string> files;
    std::vector<int> highest;  // value of each device
};

// The condition decides whether the machine triggers, and whether it stays where it can.
std::string rules(const std::string& condition) {
    const std::string event = "ProcessMemoryHeartBeat";
    const std::string trigger = R"([{"name":"TriggerVelora"}])";
    return document(
        {config(1, {transition("start", "start", event, filters({"double PseudoRandomDouble() < =0.5"}), trigger)}),
         config(7, {transition("start", "armed", event, filters({condition})),
                    transition("start", "end", event, filters({"integer vmRssKB > =20"})),
                    transition("armed", "start", event, filters({"double PseudoRandomDouble() < =0.3"}), trigger)})});
}

TEST_F(Tune, EachOutcomeIsThatOfARunWithTheThresholdAndNoneIsBetter) {
    record(6, 30, 25);
    for (const char* const condition :
         {"integer vmRssKB > =T", "integer vmRssKB <= =T", "integer =T > vmRssKB", "integer vmRssKB >= =T",
          "integer vmRssKB == =T", "integer vmRssKB != =T", "double load < =T", "double PseudoRandomDouble() < =T"}) {
        const std::string text = condition;
        const auto documentWith = [&](std::string threshold) {
            std::string changed = text;
            return folder.write("rules", rules(changed.replace(changed.find("T"), 1, threshold)));
        };
        const auto judge = [&](const std::string& threshold) {
            std::vector<std::string> arguments = {"run", documentWith(threshold), "--format", "json"};
            arguments.insert(arguments.end(), files.begin(), files.end());
            const Json::Value count = run(arguments)["configs"][1]["transitions"][2];
            return std::pair(count["devices"].asUInt(), count["fired"].asUInt());
        };
        const std::string operand = text.find("=T") < 10 ? "1" : "2";
        std::vector<std::string> arguments = {"tune",
                                              documentWith("3"),
                                              "configs[1].payload.data.transitions[0].filters[0].operand" + operand,
                                              "--target",
                                              "60%",
                                              "--format",
                                              "json"};
        arguments.insert(arguments.end(), files.begin(), files.end());
        const Json::Value result = run(arguments);
        ASSERT_GT(result["thresholds"].size(), 1u) << condition;
        for (const Json::Value& each : result["thresholds"]) {
            EXPECT_EQ(judge(each["threshold"].asString()),
                      std::pair(each["devices"].asUInt(), each["triggers"].asUInt()))
                << condition << each["threshold"].asString();
        }
        unsigned best = 0;
        for (int threshold = -1; threshold <= 26; ++threshold) {
            const unsigned devices = judge(std::to_string(threshold)).first;
            best = devices <= 3 ? std::max(best, devices) : best;
        }
        EXPECT_GE(result["below"]["devices"].asUInt(), best) << condition;
    }
}

TEST_F(Tune, ValuesThatAreTooManyToKeepAreTriedWhereTheyMatter) {
    record(20, 230, 10'000'000);
    const std::string event = "ProcessMemoryHeartBeat";
    const std::string path = folder.write(
        "rules", document({config(7, {transition("start", "start", event, filters({"integer vmRssKB > =1"}),
                                                 R"([{"name":"TriggerVelora"}])")})}));
    std::vector<std::string> arguments = {
        "tune",     path,  "configs[0].payload.data.transitions[0].filters[0].operand2", "--target", "14%",
        "--format", "json"};
    arguments.insert(arguments.end(), files.begin(), files.end());
    const Json::Value result = run(arguments);
    std::ranges::sort(highest);
    EXPECT_EQ(result["answer"]["devices"].asUInt(), 2u);
    EXPECT_EQ(result["answer"]["threshold"].asString(),
              textOf(roundestIn(highest[17], highest[18] - 1, kInteger), kInteger));
    EXPECT_EQ(result["above"]["devices"].asUInt(), 3u);
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
