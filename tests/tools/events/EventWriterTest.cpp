#include "tools/vig/events/EventWriter.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>

#include "tests/tools/ToolRun.h"
#include "tools/vig/events/EventReader.h"

namespace Brenta::OS::VIG::Tool {

namespace {

using RulesEngine::EventType;

std::string written(const EventRecord& record) {
    const support::MemoryFile file;
    Output output(file.descriptor);
    writeEvent(output, record);
    output.flush();
    return file.content();
}

EventRecord readBack(const std::string& line) {
    const support::MemoryFile file(line);
    const Interruption interruption;
    EventReader reader(file.descriptor, "record", interruption, [] {});
    EventRecord record;
    EXPECT_EQ(reader.next(record), EventReader::Status::Record) << reader.error();
    return record;
}

TEST(EventWriter, RecordIsOneLineOfJson) {
    EventRecord record{.type = EventType::Timeout, .timeMs = 1200, .timeoutId = 3};
    EXPECT_EQ(written(record), "{\"event\":\"Timeout\",\"time_ms\":1200,\"timeout_id\":3}\n");
    record.attributes.add<std::int64_t>("a", -1);
    record.attributes.add<std::int64_t>("b", 2);
    record.attributes.add<bool>("c", true);
    record.attributes.add<double>("d", 90.0);
    record.attributes.add<std::string_view>("e", "\"\\\n\x01");
    record.attributes.add<std::uint64_t>("f", 18446744073709551615u);
    EXPECT_EQ(written(record),
              R"({"event":"Timeout","time_ms":1200,"timeout_id":3,"uint64":{"f":18446744073709551615},)"
              R"("int64":{"a":-1,"b":2},"double":{"d":90},"bool":{"c":true},"string":{"e":"\"\\\n\u0001"}})"
              "\n");
}

TEST(EventWriter, RecordReadsBackEqual) {
    EventRecord record{.type = EventType::Test};
    const double special[] = {0.0, -0.0, 0.1, 1e16, 5e-324, 1.7976931348623157e308, -1.7976931348623157e308};
    for (std::size_t i = 0; i < std::size(special); ++i) {
        record.attributes.add<double>(fmt::format("special{}", i), special[i]);
    }
    std::mt19937_64 generator(1);
    for (int i = 0; i < 10'000; ++i) {
        const auto value = std::bit_cast<double>(generator());
        if (std::isfinite(value)) {
            record.attributes.add<double>(fmt::format("d{}", i), value);
        }
    }
    record.attributes.add<std::int64_t>("least", INT64_MIN);
    record.attributes.add<std::string_view>("", "");
    record.attributes.add<std::string_view>("\x7F\xC3\xA9\n", std::string_view("a\0b\x1F\xF0\x9F\x98\x80", 8));
    record.attributes.add<bool>("b", false);
    record.attributes.sort<double>();
    record.attributes.sort<std::string_view>();
    const EventRecord again = readBack(written(record));
    EXPECT_TRUE(again == record);
    EXPECT_TRUE(std::signbit(*again.attributes.find<double>("special1")));
}

}  // namespace

}  // namespace Brenta::OS::VIG::Tool
