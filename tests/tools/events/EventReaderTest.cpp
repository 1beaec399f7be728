#include "tools/vig/events/EventReader.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <zlib.h>
#include <zstd.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/tools/ToolRun.h"
#include "tests/tools/events/Reading.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using RulesEngine::Event;
using RulesEngine::EventType;
using support::MemoryFile;
using support::Reading;
using support::written;

std::string numbered(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += fmt::format("{{\"event\":\"Test\",\"time_ms\":{}}}\n", i);
    }
    return text;
}

TEST(EventReader, RecordBecomesAnEventWithTheAttributesOfEachKind) {
    const Reading all(
        R"( {"int64" : {"vmSwapKB":24,"vmRssKB":-9223372036854775808},"event":"ProcessMemoryHeartBeat",)"
        R"("uint64":{"most":18446744073709551615},"double":{"whole":90,"half":-0.5},"time_ms":1200,)"
        R"("bool":{"yes":true,"no":false},"string":{"processName":"c\u0061m\n\ud83d\ude00","empty":"","\u00e9":"","":""}})"
        "\n"
        R"({"device":"\u0061\"","event":"Timeout","timeout_id":3})"
        "\n"
        R"({"ended":true,"device":"b"})"
        "\n"
        R"({"event":"Test"})");
    ASSERT_EQ(all.records.size(), 4u) << all.error;
    EXPECT_EQ(all.records[0].timeMs, 1200);
    const RecordedEvent event(all.records[0].attributes, all.records[0].type);
    EXPECT_EQ(event.type, EventType::ProcessMemoryHeartBeat);
    EXPECT_EQ(event.getUint64Attr("most"), UINT64_MAX);
    EXPECT_EQ(event.getInt64Attr("vmRssKB"), INT64_MIN);
    EXPECT_EQ(event.getDoubleAttr("whole"), 90.0);
    EXPECT_EQ(event.getBoolAttr("yes"), true);
    EXPECT_EQ(event.getBoolAttr("no"), false);
    EXPECT_EQ(event.getStringAttr("processName"), "cam\n\xF0\x9F\x98\x80");
    using Names = std::vector<std::string_view>;
    EXPECT_EQ(event.keys(Event::ValueType::Uint64), Names{"most"});
    EXPECT_EQ(event.keys(Event::ValueType::Int64), (Names{"vmRssKB", "vmSwapKB"}));
    EXPECT_EQ(event.keys(Event::ValueType::Double), (Names{"half", "whole"}));
    EXPECT_EQ(event.keys(Event::ValueType::Bool), (Names{"no", "yes"}));
    EXPECT_EQ(event.keys(Event::ValueType::String), (Names{"", "empty", "processName", "\xC3\xA9"}));
    // Each kind stands for itself.
    EXPECT_FALSE(event.getDoubleAttr("vmRssKB") || event.getInt64Attr("whole"));
    EXPECT_FALSE(event.getUint64Attr("vmRssK") || event.getBoolAttr("vmRssKBs"));
    // Nothing of a record is left in the next.
    EXPECT_TRUE(all.records[1] == (EventRecord{.type = EventType::Timeout, .timeoutId = 3, .device = "a\""}));
    EXPECT_TRUE(all.records[2] == (EventRecord{.device = "b", .isEnd = true}));
    EXPECT_TRUE(all.records[3] == EventRecord{.type = EventType::Test});
    EXPECT_TRUE(Reading(written(all.records)).isSame(all));
}

TEST(EventReader, WhatIsWrongWithAnAttributeIsToldOfEachKind) {
    const struct {
        std::string_view kind;
        std::string_view right;
        std::string_view expected;
        std::vector<std::string_view> wrong;
        std::vector<std::string_view> outOfRange;
    } cases[] = {
        {"uint64", "1", "an unsigned 64-bit integer", {"-00"}, {"-1"}},
        {"int64", "1", "a signed 64-bit integer", {R"("abc")", "1.5", "01", "null"}, {"9223372036854775808"}},
        {"double", "1", "a number", {R"("1")", "NaN", ".5", "1.", "1e+", "00"}, {}},
        {"double", "1", "a number", {}, {"1e999", "0.754118209207529815453E309", "-4e-326"}},
        {"bool", "true", "true or false", {"1"}, {}},
        {"string", R"("")", "a string", {"5"}, {}},
    };
    for (const auto& [kind, right, expected, wrong, outOfRange] : cases) {
        const auto expectError = [&, kind = kind](std::string_view format, std::string_view value,
                                                  const std::string& error) {
            const std::string members = fmt::format(fmt::runtime(format), kind, value);
            EXPECT_EQ(Reading("{\"event\":\"Test\"," + members + "}").error,
                      fmt::format("events.jsonl:1: error: {}{}", kind, error));
        };
        for (const std::string_view each : wrong) {
            expectError(R"("{}":{{"a":{} }})", each, fmt::format(".a: expected {}, got {}", expected, each));
        }
        for (const std::string_view each : outOfRange) {
            expectError(R"("{}":{{"a":{}}})", each,
                        fmt::format(".a: expected {}, got {}, which is out of its range", expected, each));
        }
        expectError(R"("{0}":{{"b":{1},"b":{1}}})", right, ".b: given twice");
        expectError(R"("{0}":{{"b":{1},"a":{1},"\u0062":{1}}})", right, ".b: given twice");
        expectError(R"("{0}":{{"a":{1}}},"{0}":{{}})", right, ": given twice");
        expectError(R"("{0}":{{}},"time_ms":1,"{0}":{{"a":{1}}})", right, ": given twice");
    }
}

TEST(EventReader, BadLineIsReportedWithItsPlaceAndTheKeyAtFault) {
    const std::string syntax = "invalid JSON: a brace, comma, colon, key or value is missing or too many";
    const std::string name(1000, 'n');
    const std::string digits(70, '9');
    const std::pair<std::string, std::string> cases[] = {
        {R"({"event":"Test","string":{"a.b:c d":5}})", R"(string."a.b:c d": expected a string, got 5)"},
        {R"({"event":"Test","string":{"a":"\ud800"}})", "string.a: a string has an invalid escape"},
        {R"({"event":"Test","string":["a"]})", "string: expected an object, got an array"},
        {R"({"int64":{")" + name + "\":5.5}}",
         "int64." + name.substr(0, 64) + "…: expected a signed 64-bit integer, got 5.5"},
        {R"({"event":"Test","int64":{},"\u0069nt64":{}})", "int64: given twice"},
        {R"({"int64":{"a":{}}})", "int64.a: expected a signed 64-bit integer, got an object"},
        {R"({"int64":{"a":}})", "int64.a: expected a signed 64-bit integer, got nothing"},
        {R"({"int64":{"a":)" + digits + "}}",
         "int64.a: expected a signed 64-bit integer, got " + digits.substr(0, 64) + "…, which is out of its range"},
        {R"({"event":"Test","event":"Test"})", "event: given twice"},
        {R"({"event":"Test","time_ms":1,"time_ms":1})", "time_ms: given twice"},
        {R"({"event":"Timeout","timeout_id":1,"timeout_id":1})", "timeout_id: given twice"},
        {"\xEF\xBB\xBF{\"event\":\"Test\"}", "expected a JSON object, got a byte order mark"},
        {R"({"event":"ProcessMemoryHeartbeat"})",
         R"(event: unknown event "ProcessMemoryHeartbeat"; did you mean "ProcessMemoryHeartBeat"?)"},
        {R"({"event":")" + name + "\"}", "event: unknown event \"" + name.substr(0, 64) + "…\""},
        {R"({"event":7})", "event: expected a string, got 7"},
        {R"({"event":"Test","device":7})", "device: expected a string, got 7"},
        {R"({"event":"Test","device":""})", R"(device: expected a name, got "")"},
        {R"({"device":"a"})", "event: missing"},
        {R"({"device":"a","ended":1})", "ended: expected true or false, got 1"},
        {R"({"device":"a","ended":false})", "ended: expected true, got false"},
        {R"({"ended":true})", R"(ended: stands beside "device" and nothing else)"},
        {R"({"device":"a","ended":true,"int64":{}})", R"(ended: stands beside "device" and nothing else)"},
        {R"({"int64":{"a":1}})", "event: missing"},
        {R"({"event":"Timeout"})", "timeout_id: missing, which a Timeout event needs"},
        {R"({"event":"Test","timeout_id":3})", "timeout_id: only a Timeout event has one"},
        {R"({"event":"Test","time_ms":"1"})", R"(time_ms: expected a signed 64-bit integer, got "1")"},
        {R"({"event":"Test","int":{"a":1}})", R"(int: unknown key; did you mean "int64"?)"},
        {"{\"" + name + "\":1}", name.substr(0, 64) + "…: unknown key"},
        {R"(["event"])", "expected a JSON object, got an array"},
        {R"("event")", R"(expected a JSON object, got "event")"},
        {R"({"event":"Test"} {"event":"Test"})", "something follows after the object"},
        {R"({"event":"Test")", syntax},
        {R"({"event":"Test","int64":{"a":1})", syntax},
        {R"({"event":"Test","int64":{"a":1,}})", "int64: " + syntax},
        {R"({"event":"Te)", "a string is not closed"},
        {"{\"event\":\"Test\",\"string\":{\"a\":\"\xFF\"}}", "invalid UTF-8"},
        {"{\"event\":\"Test\",\"string\":{\"a\":\"\t\"}}", "a control character in a string has to be escaped"},
    };
    for (const auto& [line, message] : cases) {
        const Reading all("{\"event\":\"Test\"}\n\n" + line + "\n}}}\n");  // what follows does not repair it
        EXPECT_EQ(all.records.size(), 1u) << line;
        EXPECT_EQ(all.error, "events.jsonl:3: error: " + message) << line;
    }
    const int folder = open("/", O_RDONLY | O_DIRECTORY);
    const Interruption interruption;
    EventReader reader(folder, "here", EventReader::Devices::One, interruption, [] {});
    EXPECT_EQ(reader.next(), EventReader::Status::Failed);
    EXPECT_EQ(reader.error(), "vig: error: here: Is a directory");
    close(folder);
}

TEST(EventReader, RecordsAreOfTheDevicesThatTheReaderIsToldOf) {
    using Devices = EventReader::Devices;
    const std::string a = R"({"device":"a","event":"Test"})";
    const std::string b = R"({"device":"b","event":"Test"})";
    const std::string unnamed = R"({"event":"Test"})";
    const std::string end = R"({"device":"a","ended":true})";
    const struct {
        Devices devices;
        std::vector<std::string> lines;
        std::size_t records;
        std::string mistake;  // in the last line
    } cases[] = {
        {Devices::One, {unnamed, a, unnamed, a, end}, 4, ""},
        {Devices::One, {end}, 0, ""},
        {Devices::One, {a, b}, 1, R"("b" after "a"; vig run --by-device gives each machines of its own)"},
        {Devices::One, {b, end}, 1, R"("a" after "b"; vig run --by-device gives each machines of its own)"},
        {Devices::One, {a, end, a}, 1, R"("a" has ended; vig run --by-device begins anew)"},
        {Devices::One, {end, unnamed}, 0, R"("a" has ended; vig run --by-device begins anew)"},
        {Devices::Any, {a, unnamed, end, b, end, a}, 6, ""},
        {Devices::Named, {a, b, end, a, end}, 5, ""},
        {Devices::Named, {a, unnamed}, 1, "missing, without which nobody knows whose event it is"},
    };
    for (const auto& [devices, lines, records, mistake] : cases) {
        const Reading reading(fmt::format("{}\n", fmt::join(lines, "\n")), 32768, devices);
        EXPECT_EQ(reading.records.size(), records);
        EXPECT_EQ(reading.error,
                  mistake.empty() ? "" : fmt::format("events.jsonl:{}: error: device: {}", lines.size(), mistake));
    }
}

TEST(EventReader, NumbersHaveTheValueThatIsNearest) {
    for (const std::string text :
         {"0.12345678901234567890", "-0.99999999999999999999", "0.00000000000000000000000000123456789012345678901",
          "0.51730597866512478594", "94.07325221745E-0309", "5e-324", "1.7976931348623157e308",
          "17976931348623157081452742373170435679807056752584e259", "0E100000000000000000000",
          "0.000e-99999999999999999999", "-0", "1e0000000000000000000000005"}) {
        const Reading all(R"({"event":"Test","double":{"a": )" + text + " }}");
        ASSERT_EQ(all.error, "");
        EXPECT_EQ(std::bit_cast<std::uint64_t>(all.records.at(0).attributes.find<double>("a").value()),
                  std::bit_cast<std::uint64_t>(std::strtod(text.c_str(), nullptr)))
            << text;
    }
    const Reading zeros(R"({"event":"Test","uint64":{"a":-0 ,"b":0},"int64":{"a":-0}})");
    ASSERT_EQ(zeros.error, "");
    EXPECT_EQ(zeros.records.at(0).attributes.find<std::uint64_t>("a"), 0u);
    EXPECT_EQ(zeros.records.at(0).attributes.find<std::int64_t>("a"), 0);
}

TEST(EventReader, LinesMayEndInAnyWayAndBeLongerThanTheBuffer) {
    const std::string longName(700'000, 'n');
    std::string text = "\xEF\xBB\xBF{\"event\":\"Test\"}\r\n \t\r\n\n";
    text += R"({"event":"Test","string":{"a":")" + longName + "\"}}\n" + numbered(20'000);
    text.pop_back();
    const Reading all(text);
    ASSERT_EQ(all.error, "");
    ASSERT_EQ(all.records.size(), 20'002u);
    EXPECT_EQ(all.bytes, text.size());
    EXPECT_EQ(all.records[1].attributes.find<std::string_view>("a"), longName);
    for (int i = 0; i < 20'000; ++i) {
        ASSERT_EQ(all.records[static_cast<std::size_t>(i) + 2].timeMs, i);
    }
}

TEST(EventReader, WhatHasArrivedFromAPipeIsHandedOutBeforeWaitingForMore) {
    const std::string_view first = "{\"event\":\"ZramHeartBeat\"}\n{\"event\":";
    const Reading all(std::string(first) + "\"Test\"}\n", first.size());
    EXPECT_EQ(all.atWaits, (std::vector<std::size_t>{0, 1, 2})) << all.error;
    // The shortest lines are not taken for the beginning of compressed data.
    for (const std::string_view line : {"{}\n", "x\n", "\x28\n"}) {
        EXPECT_EQ(Reading(line, line.size()).atWaits.size(), 1u) << line;
    }
    const MemoryFile file("{\"event\":\"Test\"}\n");
    Interruption interruption;
    interruption.request();
    EXPECT_EQ(EventReader(file.descriptor, "file", EventReader::Devices::One, interruption, [] {}).next(),
              EventReader::Status::Interrupted);
}

// The libraries that made the formats compress the text.
std::string gzipped(std::string_view text) {
    const MemoryFile file;
    const gzFile stream = gzdopen(dup(file.descriptor), "wb9");
    EXPECT_EQ(gzwrite(stream, text.data(), static_cast<unsigned>(text.size())), std::ssize(text));
    gzclose(stream);
    return file.content();
}

std::string zstandard(std::string_view text) {
    std::string result(ZSTD_compressBound(text.size()), '\0');
    ZSTD_CCtx* const context = ZSTD_createCCtx();
    ZSTD_CCtx_setParameter(context, ZSTD_c_checksumFlag, 1);
    result.resize(ZSTD_compress2(context, result.data(), result.size(), text.data(), text.size()));
    ZSTD_freeCCtx(context);
    return result;
}

TEST(EventReader, CompressedDataIsReadInAllItsPartsAndWhatIsNoneIsAnError) {
    const std::string many = numbered(20'000);
    const std::string skippable("\x5F\x2A\x4D\x18\x03\0\0\0abc", 11);
    const std::string longest = "{\"event\":\"Test\"}\n" + std::string(std::size_t{1} << 24, ' ');
    const std::string tooLong = "the line has more than 16777216 bytes, the most that is read of compressed data";
    // Frames of an empty block, which ask for 128 and for 256 MiB.
    const std::string largestWindow("\x28\xB5\x2F\xFD\x00\x88\x01\x00\x00", 9);
    const std::string largerWindow("\x28\xB5\x2F\xFD\x00\x90\x01\x00\x00", 9);
    const auto cut = [](const std::string& data) { return data.substr(0, data.size() - 9); };
    const auto flipped = [](std::string data) {
        data[data.size() - 2] = static_cast<char>(data[data.size() - 2] ^ 1);
        return data;
    };
    const struct {
        std::string data;
        std::size_t records;  // any number where the data ends too early, since zlib gives what it has in parts
        std::string error;
    } cases[] = {
        {gzipped(many), 20'000, ""},
        {zstandard(many), 20'000, ""},
        {gzipped("{\"event\":\"Te") + gzipped("") + gzipped("st\"}\n"), 1, ""},
        {skippable + zstandard("{\"event\":\"Te") + skippable + zstandard("st\"}"), 1, ""},
        {gzipped(many) + std::string(200'000, '\0'), 20'000, ""},
        {gzipped(many) + std::string(9, '\0') + gzipped(many), 20'000, "the gzip data is corrupt (data error)"},
        {gzipped(many).substr(0, 20'000), 0, "the gzip data is truncated"},
        {zstandard(many).substr(0, 1000), 0, "the zstd data is truncated"},
        {largestWindow, 0, ""},
        {largerWindow, 0, "the zstd data is corrupt (Frame requires too much memory for decoding)"},
        {"\x1F\x8B", 0, "the gzip data is truncated"},
        {flipped(gzipped(many)), 20'000, "the gzip data is corrupt (incorrect length check)"},
        {flipped(zstandard(many)), 20'000, "the zstd data is corrupt (Restored data doesn't match checksum)"},
        {flipped(zstandard("{\"event\":\"Test\"}\n")), 1,
         "the zstd data is corrupt (Restored data doesn't match checksum)"},
        {gzipped(many) + "more", 20'000, "the gzip data is corrupt (incorrect header check)"},
        {zstandard(many) + "more", 20'000, "the zstd data is corrupt (Unknown frame descriptor)"},
        {gzipped(longest), 1, ""},
        {zstandard(longest + "\n{\"event\":\"Test\"}"), 2, ""},
        {gzipped(longest + " "), 1, tooLong},
        {cut(gzipped(longest + std::string(std::size_t{1} << 26, ' '))), 1, tooLong},  // not read to its end
        {zstandard(longest + " \n{\"event\":\"Test\"}"), 1, tooLong},
        {longest + " \n{\"event\":\"Test\"}", 2, ""},
        {"\x28\xB5\x2F", 0, "invalid UTF-8"},
    };
    for (const auto& each : cases) {
        const Reading all(each.data);
        const std::string place = "events.jsonl:" + std::to_string(all.records.size() + 1) + ": error: ";
        EXPECT_TRUE(each.error.empty() ? all.error.empty() : all.error.starts_with(place + each.error)) << all.error;
        if (!each.error.ends_with("truncated")) {
            EXPECT_EQ(all.records.size(), each.records) << each.error;
        }
    }
}

TEST(EventReader, CompressedRecordsArriveOverAPipeAsSoonAsTheirBytes) {
    for (const auto compressed : {gzipped, zstandard}) {
        EXPECT_EQ(Reading(compressed(numbered(1)), 1).atWaits.back(), 1u);
        EXPECT_EQ(Reading(compressed(numbered(10'000)), 60'000).atWaits.back(), 10'000u);
    }
}

TEST(EventRecord, IsOneLineOfJsonThatReadsBackEqual) {
    EventRecord record{.type = EventType::Timeout, .timeMs = 1200, .timeoutId = 3};
    EXPECT_EQ(written({record}), "{\"event\":\"Timeout\",\"time_ms\":1200,\"timeout_id\":3}\n");
    record.attributes.add<std::int64_t>("a", -1);
    record.attributes.add<std::int64_t>("least", INT64_MIN);
    record.attributes.add<bool>("c", true);
    record.attributes.add<bool>("d", false);
    record.attributes.add<double>("d", 90.0);
    record.attributes.add<std::string_view>("", "");
    record.attributes.add<std::string_view>("e", std::string_view("\"\\\n\x01\0\xF0\x9F\x98\x80", 9));
    record.attributes.add<std::string_view>("\x7F\xC3\xA9\n", "\x1F");
    record.attributes.add<std::uint64_t>("f", UINT64_MAX);
    EXPECT_EQ(written({record}),
              R"({"event":"Timeout","time_ms":1200,"timeout_id":3,"uint64":{"f":18446744073709551615},)"
              R"("int64":{"a":-1,"least":-9223372036854775808},"double":{"d":90},"bool":{"c":true,"d":false},)"
              R"("string":{"":"","e":"\"\\\n\u0001\u0000)"
              "\xF0\x9F\x98\x80"
              R"(","\u007f)"
              "\xC3\xA9"
              R"(\n":"\u001f"}})"
              "\n");
    for (const double special : {0.0, -0.0, 0.1, 1e16, 5e-324, 1.7976931348623157e308, -1.7976931348623157e308}) {
        record.attributes.add<double>(fmt::format("special{}", special), special);
    }
    std::mt19937_64 generator(1);
    for (int i = 0; i < 10'000; ++i) {
        const auto value = std::bit_cast<double>(generator());
        if (std::isfinite(value)) {
            record.attributes.add<double>(fmt::format("d{}", i), value);
        }
    }
    record.attributes.sort<double>();
    const Reading again(written({record}));
    ASSERT_EQ(again.records.size(), 1u) << again.error;
    EXPECT_TRUE(again.records[0] == record);
    EXPECT_TRUE(std::signbit(*again.records[0].attributes.find<double>("special-0")));
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
