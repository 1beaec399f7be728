#include "vig/parsers/VIGResponseParser.h"

#include <gmock/gmock.h>

#include <type_traits>

#include "tests/support/Documents.h"
#include "tests/support/LogCapture.h"
#include "tests/vig/parsers/Json.h"
#include "vig/parsers/JsonValues.h"
#include "vig/parsers/VIGConfigPayloadParser.h"
#include "vig/parsers/VIGParserConfig.h"

namespace {

using namespace Brenta::OS::VIG;
using namespace std::string_literals;
using support::config;
using support::document;
using support::LogCapture;
using testing::ElementsAre;
using testing::IsEmpty;

using Strings = std::vector<std::string>;

// The ids of the configurations, each followed by that of its payload; nothing if the text is refused.
std::optional<std::vector<std::int64_t>> read(const std::string& text, VIGParseError expected, Strings messages) {
    const LogCapture log;
    const auto result = VIGResponseParser().parseFromString(text, VIGParserConfig({}, {}, {}, {}, {}, {}));
    EXPECT_EQ(result.error, expected) << text;
    EXPECT_EQ(log.lines(), support::errorLines(messages)) << text;
    if (!result.value) {
        return std::nullopt;
    }
    std::vector<std::int64_t> ids;
    for (const auto& each : *result.value) {
        ids.insert(ids.end(), {each->getConfigId(), each->getConfigPayload()->getConfigPayloadId()});
    }
    return ids;
}

void expectRefused(const std::string& text, VIGParseError error, const Strings& messages) {
    EXPECT_EQ(read(text, error, messages), std::nullopt);
}

void expectInvalidJson(const std::string& text, const std::string& report) {
    expectRefused(text, VIGParseError::InvalidJson,
                  {"Wrong format, cannot parson json: " + report + "\n" + text.c_str()});
}

std::vector<std::int64_t> idsOf(const std::string& text) {
    return read(text, VIGParseError::Ok, {}).value_or(std::vector<std::int64_t>{-1});
}

TEST(ResponseParser, RefusesARootOfTheWrongShapeWithoutALine) {
    for (const char* text : {"null", "{}", R"({"configs":null})", R"({"configs":{}})", R"({"configs":3})",
                             R"({"Configs":[]})", "[]", R"("configs")", "3", "true"}) {
        expectRefused(text, VIGParseError::InvalidResponse, {});
    }
}

TEST(ResponseParser, RefusesABadConfigOrPayload) {
    const Json::Value good = json(config(7, {}));
    const auto expectAllRefused = [&](const std::string& key, const Strings& values) {
        for (const std::string& value : values) {
            const Json::Value bad = key.empty() ? json(value) : with(good, key, value);
            expectRefused(document({bad.toStyledString()}), VIGParseError::InvalidConfig,
                          shown({"Invalid VIG Config JSON: {}."}, bad));
        }
    };
    expectAllRefused("", {"null", "3", "[]", "{}"});
    expectAllRefused("payload", {"", "null", "3", "[]", R"("x")"});
    expectAllRefused("id", {"", "null", R"("7")", "true", "[]", "9223372036854775808", "9223372036854775808.0",
                            "-9223372036854777856", "1e30", "-1e30", "18446744073709551615"});
    Strings payloads = {"{}"};
    for (const char* data : {"", "null", "3", "[]", R"("x")"}) {
        payloads.push_back(with(good["payload"], "data", data).toStyledString());
    }
    for (const char* id : {"", "null", R"("7")", "true", "[]", "2147483648", "-2147483649", "2147483648.0",
                           "-2147483649.0", "9223372036854775808", "1e300"}) {
        payloads.push_back(with(good["payload"], "id", id).toStyledString());
    }
    for (const std::string& payload : payloads) {
        expectRefused(document({with(good, "payload", payload).toStyledString()}), VIGParseError::InvalidConfigPayload,
                      shown({"Invalid VIG Config Payload JSON: {}."}, json(payload)));
    }
    // A configuration hands no such payload over, but a client can.
    for (const char* bad : {"null", "3", "[]"}) {
        const LogCapture log;
        const VIGParserConfig config({}, {}, {}, {}, {}, {});
        EXPECT_EQ(VIGConfigPayloadParser().parse(json(bad), config).error, VIGParseError::InvalidConfigPayload);
        EXPECT_EQ(log.lines(), support::errorLines(shown({"Invalid VIG Config Payload JSON: {}."}, json(bad))));
    }
}

TEST(ResponseParser, StopsAtTheFirstFaultAndPassesItsCodeOn) {
    expectRefused(document({config(1, {}), R"({"id":2})", R"({"id":3})"}), VIGParseError::InvalidConfig,
                  shown({"Invalid VIG Config JSON: {}."}, json(R"({"id":2})")));
    expectRefused(document({config(7, {"1"}), "1"}), VIGParseError::InvalidFsm,
                  shown({"Invalid FSM JSON: {}."}, json(support::machine({"1"}))));
}

TEST(ResponseParser, KeepsEveryConfigInOrderTruncatesIdsTowardZeroAndIgnoresOtherKeys) {
    Strings configs;
    for (const auto& [config, payload] :
         std::initializer_list<std::pair<std::string, std::string>>{{"2.9", "-1"},
                                                                    {"-2.9", "2147483647.9"},
                                                                    {"9223372036854775807", "-2147483648.9"},
                                                                    {"-9223372036854775808.0", "-0.0"},
                                                                    {"9223372036854774784.0", "1.5e3"}}) {
        configs.push_back(R"({"id":)" + config + R"(,"x":[],"payload":{"x":1,"id":)" + payload +
                          R"(,"data":{"transitions":[]}}})");
    }
    EXPECT_THAT(idsOf(R"({"x":1,"configs":[)" + support::joined(configs) + "]}"),
                ElementsAre(2, -1, -2, 2147483647, INT64_MAX, INT32_MIN, INT64_MIN, 0, 9223372036854774784, 1500));
}

TEST(ResponseParser, ReadsAndReportsWhatTheReaderDoes) {
    for (const std::string& text :
         {""s, " "s, R"({"configs":[}])"s, "{'configs':[]}"s, "nul"s, "// only"s, "\xFF"s, "{\"configs\":\0[]}"s}) {
        expectInvalidJson(text, readJson(text).report);
    }
    for (const std::string& text :
         {"\xEF\xBB\xBF{\"configs\":[]}"s, "/*[*/{\"configs\"://{\n[]/*1*/}//"s, R"({"configs":[],})"s,
          R"({"configs":[]} and {"more": [)"s, "{\"configs\":[]}\0{"s, "{\"a\0b\":\"\0\",\"configs\":[]}"s,
          R"({"configs":3,"configs":[]})"s, "{\"\xFF\":\"\xC0\x80\",\"configs\":[]}"s}) {
        EXPECT_THAT(idsOf(text), IsEmpty());
    }
}

TEST(ResponseParser, RefusesTextNestedDeeperThanTheReaderGoes) {
    const auto nested = [](std::size_t levels) { return std::string(levels, '[') + std::string(levels, ']'); };
    for (const std::string& text : {std::string(1001, '['), nested(1001), std::string(100000, '[')}) {
        expectInvalidJson(text, "* Line 1, Column 1001\n  Nested deeper than the limit of 1000 levels.\n");
    }
    EXPECT_THAT(idsOf(R"({"x":)" + nested(997) + R"(,"configs":[]})"), IsEmpty());
    // Indented, a line of the log would take a megabyte.
    expectRefused(document({nested(997)}), VIGParseError::InvalidConfig,
                  {"Invalid VIG Config JSON: " + nested(997) + "\n."});
    EXPECT_THAT(styledText(json(nested(32))), testing::StartsWith("[\n\t[\n\t\t["));
    EXPECT_EQ(styledText(json(nested(33))), nested(33) + "\n");
}

static_assert(!std::is_polymorphic_v<VIGConfig> && !std::is_copy_constructible_v<VIGConfig>);
static_assert(!std::is_polymorphic_v<VIGConfigPayload> && !std::is_copy_constructible_v<VIGConfigPayload>);
static_assert(VIGParseError::Ok == VIGParseError{0} && VIGParseError::InvalidJson == VIGParseError{2} &&
              VIGParseError::InvalidResponse == VIGParseError{3} && VIGParseError::InvalidConfig == VIGParseError{4} &&
              VIGParseError::InvalidConfigPayload == VIGParseError{5} && VIGParseError::InvalidFsm == VIGParseError{6});

}  // namespace
