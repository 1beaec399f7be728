#include <cstdint>
#include <sstream>
#include <string>

#include "fuzz/Inputs.h"
#include "tests/tools/events/Reading.h"

// Event records, of which the first one shows how the others may look. Each of them must be read as if it were alone.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::istringstream lines(std::string(reinterpret_cast<const char*>(data), size));
    std::string first;
    std::getline(lines, first);
    for (std::string line; std::getline(lines, line);) {
        Brenta::OS::VIG::Tool::RecordParser parser;
        const support::Outcome known(parser, first);
        if (!(support::Outcome(parser, line) == support::alone(line))) {
            fuzz::fail("read otherwise after the first line: " + line);
        }
        if (!(support::Outcome(parser, first) == known)) {
            fuzz::fail("the first line is read otherwise after: " + line);
        }
    }
    return 0;
}
