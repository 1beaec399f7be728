#include <host/LogSink.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "fuzz/Limits.h"
#include "tools/vig/check/Findings.h"
#include "tools/vig/document/Registry.h"
#include "vig/parsers/VIGResponseParser.h"

// A rule document: `vig check` finds an error exactly in what the library refuses.

namespace Tool = Brenta::OS::VIG::Tool;

namespace {

bool isRefusal(const Tool::Finding& each) {
    return each.severity == Tool::Severity::Error && each.name != "endless-entering";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto registry = Tool::libraryRegistry();
    static const auto catalogue = Tool::Catalogue::builtIn();
    static const auto previous = host::setLogSink([](int, std::string_view, std::string_view) {});
    const std::string text(reinterpret_cast<const char*>(data), size);
    fuzz::useWithinLimits(text, fuzz::kMegabyte, [](const std::string& document) {
        const bool isRefused =
            std::ranges::any_of(findingsIn(Tool::DocumentText("rules", document), registry, catalogue), isRefusal);
        if ((Brenta::OS::VIG::VIGResponseParser().parseFromString(document, registry).value == nullptr) != isRefused) {
            std::fprintf(stderr, "check finds %s\n", isRefused ? "an error" : "no error");
            std::abort();
        }
    });
    return 0;
}
