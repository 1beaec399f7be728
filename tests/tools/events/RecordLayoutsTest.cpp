#include "tools/vig/events/RecordLayouts.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/tools/events/Reading.h"
#include "tools/vig/events/LineReader.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using support::alone;
using support::Outcome;

const std::vector<std::string>& lines() {
    static const std::vector<std::string> lines = {
        R"({"event":"Test"})",
        R"({"event":"Timeout","time_ms":12,"timeout_id":-3,"device":"unit 7"})",
        R"({"device":"7","ended":true})",
        R"({"event":"ProcessMemoryHeartBeat","time_ms":7019,"int64":{"pid":10945,"vmRssKB":331140},)"
        R"("string":{"processName":"com.example.camera","note":""}})",
        R"( { "string" : {"z":"é","a":"1234567","b":"12345678"} , "double":{"half":-0.5e1,"d":0}, "event" : "Test" } )",
        R"({"bool":{"yes":true,"no":false},"uint64":{"most":18446744073709551615,"least":0},"event":"ZramHeartBeat","int64":{}})",
        R"({"event":"Te\u0073t","string":{"escaped":"a\"b\\","\u0061":"c"}})",
        R"({"event":"Test","string":{"y":"c","\u007A":"d"}})",
    };
    return lines;
}

TEST(RecordLayouts, EachLineIsReadAsIfItWereAloneWhateverOnesWereBefore) {
    const std::string bytes = std::string("\"\\{}:,09-.eE tf\n\x01\x7F\x80\xC3\xFF", 21) + '\0';
    for (const std::string& line : lines()) {
        ASSERT_EQ(alone(line).error, "");
        std::vector<std::string> others = {line + "\r", line.substr(0, line.size() - 1)};
        for (std::size_t place = 0; place < line.size(); ++place) {
            for (const char byte : bytes) {
                others.push_back(line);
                others.back()[place] = byte;
                others.push_back(std::string(line).insert(place, 1, byte));
            }
            others.push_back(std::string(line).erase(place, 1));
            others.push_back(std::string(line).insert(place, "1234567890123456789"));
        }
        for (const std::string& other : others) {
            RecordParser parser;
            ASSERT_EQ(Outcome(parser, line).error, "");
            EXPECT_TRUE(Outcome(parser, other) == alone(other)) << line << "\n" << other;
            EXPECT_TRUE(Outcome(parser, line) == alone(line)) << line << "\nafter " << other;
        }
    }
    std::mt19937 random(1);
    RecordParser parser;
    for (int i = 0; i < 20'000; ++i) {
        std::string line = lines()[random() % lines().size()];
        if (random() % 4 == 0) {
            line[random() % line.size()] = bytes[random() % bytes.size()];
        }
        ASSERT_TRUE(Outcome(parser, line) == alone(line)) << line;
    }
}

// Reads a line by its layout, or remembers that.
bool isKnown(RecordLayouts& layouts, const std::string& line) {
    const std::string padded = line + std::string(LineReader::PADDING, '\n');
    if (layouts.read(std::string_view(padded).substr(0, line.size())) != nullptr) {
        return true;
    }
    layouts.remember(line, alone(line).record.value());
    return false;
}

// Returns one of as many layouts as there are numbers.
std::string lineLike(int number) {
    return R"({"event":"Test","int64":{"a)" + std::to_string(number) + "\":1}}";
}

TEST(RecordLayouts, LinesThatLookLikeEarlierOnesAreKnownUntilTheyNeverDo) {
    RecordLayouts layouts;
    // Returns how many lines were known.
    const auto knownOf = [&](int count, auto lineOf) {
        int known = 0;
        for (int i = 0; i < count; ++i) {
            known += isKnown(layouts, lineOf(i)) ? 1 : 0;
        }
        return known;
    };
    const auto same = [](int) { return lineLike(0); };
    EXPECT_EQ(knownOf(1000, same), 999);
    // Those that were seen longest ago are forgotten.
    EXPECT_EQ(knownOf(100, [](int i) { return lineLike(i % 2 * i); }), 50);
    // What is remembered is remembered once, though it has to be looked at more closely each time.
    const std::string closer = R"({"event":"Test","string":{"a":"\n"}})";
    knownOf(1000, [](int i) { return lineLike(i / 40); });
    EXPECT_EQ(knownOf(200, [&](int i) { return i % 2 == 0 ? lineLike(i % 50 / 2) : closer; }), 100);
    EXPECT_EQ(knownOf(5000, [](int i) { return lineLike(1000 + i); }), 0);
    // They are hardly looked for any more, and soon are again.
    const int knownAgain = knownOf(3000, same);
    EXPECT_GT(knownAgain, 900);
    EXPECT_LT(knownAgain, 3000);
    EXPECT_EQ(knownOf(1000, same), 1000);
}

TEST(RecordLayouts, LinesThatAreDearToTellApartAreSoonNotLookedFor) {
    RecordLayouts layouts;
    std::mt19937 random(1);
    int known = 0;
    for (int i = 0; i < 3000; ++i) {
        known += isKnown(layouts, R"({"event":"Test","string":{"a":")" + std::string(100, 'x') + R"(","b)" +
                                      std::to_string(random() % 30) + R"(":""}})")
                     ? 1
                     : 0;
    }
    EXPECT_LT(known, 1000);
}

TEST(RecordLayouts, LongLineIsNotCopiedForEachLayoutThatBeginsLikeIt) {
    RecordLayouts layouts;
    const auto lineOf = [](std::size_t size) {
        return R"({"event":"Test","string":{"a":")" + std::string(size, 'x') + "\"}}";
    };
    EXPECT_FALSE(isKnown(layouts, lineOf(1)));
    EXPECT_TRUE(isKnown(layouts, lineOf(10'000)));
    EXPECT_FALSE(isKnown(layouts, lineOf(20'000)));
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
