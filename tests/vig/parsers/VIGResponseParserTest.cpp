#include "vig/parsers/VIGResponseParser.h"

#include <gmock/gmock.h>

#include <type_traits>

#include "tests/support/Documents.h"
#include "tests/support/LogCapture.h"
#include "tests/vig/parsers/Json.h"
#include "vig/parsers/VIGConfigPayloadParser.h"
#include "vig/parsers/VIGParserConfig.h"

namespace {

using namespace Brenta::OS::VIG;
using support::config;
using support::document;
using support::LogCapture;
using testing::ElementsAre;
using testing::IsEmpty;

using Configs = std::vector<std::unique_ptr<VIGConfig>>;
using Strings = std::vector<std::string>;

VIGParseResult<Configs> parse(const std::string& text) {
    return VIGResponseParser().parseFromString(text, VIGParserConfig({}, {}, {}, {}, {}, {}));
}

void expectRefused(const std::string& text, VIGParseError error, const Strings& messages) {
    const LogCapture log;
    const auto result = parse(text);
    EXPECT_EQ(result.error, error) << text;
    EXPECT_EQ(result.value, nullptr) << text;
    EXPECT_EQ(log.lines(), support::errorLines(messages));
}

void expectInvalidJson(const std::string& text, const std::string& report) {
    expectRefused(text, VIGParseError::InvalidJson,
                  {"Wrong format, cannot parson json: " + report + "\n" + text.c_str()});
}

Configs expectAccepted(const std::string& text) {
    const LogCapture log;
    auto result = parse(text);
    EXPECT_EQ(result.error, VIGParseError::Ok) << text;
    EXPECT_THAT(log.lines(), IsEmpty());
    return result.value ? std::move(*result.value) : Configs();
}

// The id of the only config, then that of its payload.
std::vector<std::int64_t> idsOf(const std::string& configId, const std::string& payloadId) {
    const Configs configs = expectAccepted(R"({"configs":[{"id":)" + configId + R"(,"payload":{"id":)" + payloadId +
                                           R"(,"data":{"transitions":[]}}}]})");
    return configs.empty()
               ? std::vector<std::int64_t>()
               : std::vector{configs[0]->getConfigId(), configs[0]->getConfigPayload()->getConfigPayloadId()};
}

TEST(ResponseParser, KeepsEveryConfigInDocumentOrderAndIgnoresOtherKeys) {
    const std::string extra = R"({"id":7,"x":[],"payload":{"x":1,"id":1,"data":{"transitions":[]}}})";
    const Configs configs =
        expectAccepted(R"({"x":1,"configs":[)" + support::joined({config(8, {}), extra, config(8, {})}) + "]}");
    EXPECT_THAT(configs, ElementsAre(testing::Pointee(testing::Property(&VIGConfig::getConfigId, 8)),
                                     testing::Pointee(testing::Property(&VIGConfig::getConfigId, 7)),
                                     testing::Pointee(testing::Property(&VIGConfig::getConfigId, 8))));
}

TEST(ResponseParser, RefusesARootOfTheWrongShapeWithoutALine) {
    for (const char* text : {"null", "{}", R"({"configs":null})", R"({"configs":{}})", R"({"configs":3})",
                             R"({"Configs":[]})", "[]", R"("configs")", "3", "true"}) {
        expectRefused(text, VIGParseError::InvalidResponse, {});
    }
}

TEST(ResponseParser, RefusesABadConfigOrPayload) {
    const Json::Value good = json(config(7, {}));
    const auto expectAllRefused = [&](const std::string& key, const Strings& configValues,
                                      const std::string& payloadKey, const Strings& payloadValues) {
        for (const std::string& value : configValues) {
            const Json::Value bad = key.empty() ? json(value) : with(good, key, value);
            expectRefused(document({bad.toStyledString()}), VIGParseError::InvalidConfig,
                          shown({"Invalid VIG Config JSON: {}."}, bad));
        }
        for (const std::string& value : payloadValues) {
            Json::Value bad = good;
            bad["payload"] = payloadKey.empty() ? json(value) : with(good["payload"], payloadKey, value);
            expectRefused(document({bad.toStyledString()}), VIGParseError::InvalidConfigPayload,
                          shown({"Invalid VIG Config Payload JSON: {}."}, bad["payload"]));
        }
    };
    expectAllRefused("", {"null", "3", "[]", "{}"}, "", {"{}"});
    expectAllRefused("payload", {"", "null", "3", "[]", R"("x")"}, "data", {"", "null", "3", "[]", R"("x")"});
    expectAllRefused("id",
                     {"", "null", R"("7")", "true", "[]", "9223372036854775808", "9223372036854775808.0",
                      "9223372036854775807.0", "-9223372036854777856", "1e30", "-1e30", "18446744073709551615"},
                     "id",
                     {"", "null", R"("7")", "true", "[]", "2147483648", "-2147483649", "2147483648.0", "-2147483649.0",
                      "9223372036854775808", "1e300"});
    // A configuration hands no such payload over, but a client can.
    for (const Json::Value& bad : {Json::Value(), json("3"), json("[]"), json(R"("x")")}) {
        const LogCapture log;
        const VIGParserConfig config({}, {}, {}, {}, {}, {});
        EXPECT_EQ(VIGConfigPayloadParser().parse(bad, config).error, VIGParseError::InvalidConfigPayload);
        EXPECT_EQ(log.lines(), support::errorLines(shown({"Invalid VIG Config Payload JSON: {}."}, bad)));
    }
}

TEST(ResponseParser, StopsAtTheFirstFaultAndPassesItsCodeOn) {
    expectRefused(document({config(1, {}), R"({"id":2})", R"({"id":3})"}), VIGParseError::InvalidConfig,
                  shown({"Invalid VIG Config JSON: {}."}, json(R"({"id":2})")));
    expectRefused(document({config(7, {"1"}), "1"}), VIGParseError::InvalidFsm,
                  shown({"Invalid FSM JSON: {}."}, json(support::machine({"1"}))));
}

TEST(ResponseParser, TruncatesIdsTowardZero) {
    EXPECT_THAT(idsOf("2.9", "-1"), ElementsAre(2, -1));
    EXPECT_THAT(idsOf("-2.9", "2.9"), ElementsAre(-2, 2));
    EXPECT_THAT(idsOf("1.5e3", "-1.5e+3"), ElementsAre(1500, -1500));
    EXPECT_THAT(idsOf("+2.5e1", "2147483647.9"), ElementsAre(25, 2147483647));
    EXPECT_THAT(idsOf("9223372036854775807", "-2147483648.9"), ElementsAre(INT64_MAX, INT32_MIN));
    EXPECT_THAT(idsOf("-9223372036854775808", "0"), ElementsAre(INT64_MIN, 0));
    EXPECT_THAT(idsOf("-9223372036854775808.0", "-0.0"), ElementsAre(INT64_MIN, 0));
    EXPECT_THAT(idsOf("9223372036854774784.0", "1"), ElementsAre(9223372036854774784, 1));
}

TEST(ResponseParser, ReportsTextThatIsNoJsonAsTheReaderDoes) {
    for (const std::string& text :
         {std::string(), std::string(" "), std::string(R"({"configs":[}])"), std::string("{'configs':[]}"),
          std::string("nul"), std::string("// only"), std::string("\xFF"), std::string("{\"configs\":\0[]}", 15)}) {
        expectInvalidJson(text, readJson(text).report);
    }
}

TEST(ResponseParser, ReadsWhatTheReaderReads) {
    for (const std::string& text :
         {std::string("\xEF\xBB\xBF{\"configs\":[]}"), std::string("/*[*/{\"configs\"://{\n[]/*1*/}//"),
          std::string(R"({"configs":[],})"), std::string(R"({"configs":[]} and {"more": [)"),
          std::string("{\"configs\":[]}\0{", 16), std::string("{\"a\0b\":\"\0\",\"configs\":[]}", 24),
          std::string(R"({"configs":3,"configs":[]})"), std::string("{\"\xFF\":\"\xC0\x80\",\"configs\":[]}")}) {
        EXPECT_THAT(expectAccepted(text), IsEmpty());
    }
}

TEST(ResponseParser, RefusesTextNestedDeeperThanTheReaderGoes) {
    const std::string open(1001, '[');
    for (const std::string& text : {open, open + std::string(1001, ']'), std::string(100000, '[')}) {
        expectInvalidJson(text, "* Line 1, Column 1001\n  Nested deeper than the limit of 1000 levels.\n");
    }
    const std::string deepest = std::string(997, '[') + std::string(997, ']');
    expectAccepted(R"({"x":)" + deepest + R"(,"configs":[]})");
    // Indented, a line of the log would take a megabyte.
    const LogCapture log;
    EXPECT_EQ(parse(document({R"({"x":)" + deepest + "}"})).error, VIGParseError::InvalidConfig);
    ASSERT_EQ(log.messages().size(), 1U);
    EXPECT_LT(log.messages()[0].size(), 2 * deepest.size());
}

static_assert(!std::is_polymorphic_v<VIGConfig> && !std::is_copy_constructible_v<VIGConfig>);
static_assert(!std::is_polymorphic_v<VIGConfigPayload> && !std::is_copy_constructible_v<VIGConfigPayload>);
static_assert(VIGParseError::Ok == VIGParseError{0} && VIGParseError::InvalidJson == VIGParseError{2} &&
              VIGParseError::InvalidResponse == VIGParseError{3} && VIGParseError::InvalidConfig == VIGParseError{4} &&
              VIGParseError::InvalidConfigPayload == VIGParseError{5} && VIGParseError::InvalidFsm == VIGParseError{6});

}  // namespace
