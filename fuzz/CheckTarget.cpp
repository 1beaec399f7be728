#include <host/LogSink.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "fuzz/Limits.h"
#include "tools/vig/Registry.h"
#include "tools/vig/check/Checker.h"
#include "vig/parsers/VIGResponseParser.h"

// A rule document: `vig check` finds an error exactly in what the library refuses.

namespace {

bool isRefusal(const tool::Diagnostic& each) {
    return each.severity == tool::Severity::Error && each.name != "endless-entering";
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto registry = tool::libraryRegistry();
    static const auto catalogue = tool::Catalogue::builtIn();
    static const auto previous = host::setLogSink([](int, std::string_view, std::string_view) {});
    const std::string text(reinterpret_cast<const char*>(data), size);
    fuzz::useWithinLimits(text, fuzz::kMegabyte, [](const std::string& document) {
        const bool isRefused =
            std::ranges::any_of(check(tool::DocumentText("rules", document), registry, catalogue), isRefusal);
        if ((Brenta::OS::VIG::VIGResponseParser().parseFromString(document, registry).value == nullptr) != isRefused) {
            std::fprintf(stderr, "check finds %s\n", isRefused ? "an error" : "no error");
            std::abort();
        }
    });
    return 0;
}
