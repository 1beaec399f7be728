#include <cstdint>
#include <optional>
#include <string>

#include "fuzz/Inputs.h"
#include "tests/tools/events/Reading.h"
#include "tools/vig/events/ByteSource.h"

// A file of event records, plain or compressed. Read in small pieces it must give the same as in large ones, and the
// records written and read again must be the same ones.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    namespace Tool = Brenta::OS::VIG::Tool;
    using support::Reading;
    constexpr std::size_t kOneIn = 8;  // most of the time goes into making a reader
    const std::string text(reinterpret_cast<const char*>(data), size);
    // A small compressed file may ask for a large window, and holds lines that are larger than it.
    const std::size_t always = (Tool::mayBeCompressed(text.substr(0, Tool::kMagicSize)) ? 200 : 4) * fuzz::kMegabyte;
    std::optional<Reading> reading;
    fuzz::useWithinLimits(text, always, [&](const std::string& events) { reading.emplace(events); });
    if (size % kOneIn == 0 && !Reading(text, 1 + size / 3).isSame(*reading)) {
        fuzz::fail("small pieces give something else");
    }
    const std::string again = support::written(reading->records);
    if (const Reading second(again); !second.error.empty() || second.records != reading->records) {
        fuzz::fail("read again otherwise: " + again + second.error);
    }
    return 0;
}
