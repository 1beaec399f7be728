#include "tools/vig/Checker.h"

#include <algorithm>
#include <string>
#include <tuple>

#include "tools/vig/IdWarnings.h"
#include "tools/vig/KeyWarnings.h"
#include "tools/vig/ReaderErrors.h"
#include "tools/vig/RefusalSearch.h"

namespace tool {

using Brenta::OS::VIG::VIGParserConfig;

namespace {

void checkJson(const DocumentText& document, const VIGParserConfig& registry, std::vector<Diagnostic>& found) {
    RefusalSearch search(document, registry, found);
    if (!search.acceptsResponse()) {
        return;
    }
    const Json::Value& configs = document.root()["configs"];
    for (Json::ArrayIndex index = 0; index < configs.size(); ++index) {
        // True for a configuration that can be checked further, for what it means.
        search.acceptsConfig(configs[index], "configs[" + std::to_string(index) + "]");
    }
    appendIdWarnings(document, found);
}

}  // namespace

std::vector<Diagnostic> check(const DocumentText& document, const VIGParserConfig& registry) {
    std::vector<Diagnostic> found;
    if (document.report()) {
        appendReaderErrors(document, found);
    } else {
        checkJson(document, registry, found);
        appendKeyWarnings(document, found);
    }
    std::ranges::stable_sort(found, {},
                             [](const Diagnostic& each) { return std::tuple(each.place.begin, each.place.end); });
    return found;
}

}  // namespace tool
