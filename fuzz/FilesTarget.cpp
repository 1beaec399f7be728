#include <fcntl.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/Limits.h"
#include "tests/support/TemporaryFolder.h"
#include "tools/vig/check/Catalogue.h"
#include "tools/vig/test/TestFile.h"

// A catalogue, or a file of tests. A catalogue written and read again must be the same one.

namespace Tool = Brenta::OS::VIG::Tool;

namespace {

using Tool::Catalogue;
using Tool::DocumentText;

void readCatalogue(const std::string& text) {
    std::string problem;
    const auto catalogue = Catalogue::read(DocumentText("catalogue", text), problem);
    if (catalogue.has_value() != problem.empty()) {
        fuzz::fail("a catalogue, or a problem: " + problem);
    }
    if (!catalogue) {
        return;
    }
    const auto again = Catalogue::read(DocumentText("catalogue", catalogue->text()), problem);
    if (!again || again->text() != catalogue->text()) {
        fuzz::fail(problem + catalogue->text());
    }
}

// The tests may name the file itself and another one, but nothing outside of their folder.
void readTests(const std::string& text) {
    static const support::TemporaryFolder folder;
    static const std::string file = folder.write("tests", "");
    static const std::string events = folder.write("e", "{\"event\":\"Test\"}\n");
    static const int descriptor = open(file.c_str(), O_WRONLY);
    const ssize_t written = pwrite(descriptor, text.data(), text.size(), 0);
    if (written != static_cast<ssize_t>(text.size()) || ftruncate(descriptor, written) != 0) {
        fuzz::fail("the file cannot be written");
    }
    std::vector<std::string> errors;
    if (Tool::readTestFile(file, Tool::Interruption(), errors).has_value() != errors.empty()) {
        fuzz::fail("tests, or errors");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    fuzz::useWithinLimits(text, fuzz::kMegabyte, readCatalogue);
    const bool leadsElsewhere = text.find('/') != text.npos || text.find("u002") != text.npos;
    if (!leadsElsewhere) {
        fuzz::useWithinLimits(text, fuzz::kMegabyte, readTests);
    }
    return 0;
}
