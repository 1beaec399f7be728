#include "tools/vig/check/Checker.h"

#include <algorithm>
#include <string>
#include <tuple>

#include "tools/vig/check/IdWarnings.h"
#include "tools/vig/check/KeyWarnings.h"
#include "tools/vig/check/ReaderErrors.h"
#include "tools/vig/check/RefusalSearch.h"
#include "tools/vig/check/RuleWarnings.h"
#include "tools/vig/document/RuleModel.h"

namespace Brenta::OS::VIG::Tool {

namespace {

void checkJson(const DocumentText& document, const VIGParserConfig& registry, const Catalogue& catalogue,
               std::vector<Diagnostic>& found) {
    RefusalSearch search(document, registry, found);
    if (!search.acceptsResponse()) {
        return;
    }
    const Json::Value& configs = document.root()["configs"];
    for (Json::ArrayIndex index = 0; index < configs.size(); ++index) {
        // Only what the library accepts means something.
        if (search.acceptsConfig(configs[index], "configs[" + std::to_string(index) + "]")) {
            appendWarnings(modelOf(document, index), catalogue, registry, found);
        }
    }
    appendIdWarnings(document, found);
}

}  // namespace

std::vector<Diagnostic> check(const DocumentText& document, const VIGParserConfig& registry,
                              const Catalogue& catalogue) {
    std::vector<Diagnostic> found;
    if (document.report()) {
        appendReaderErrors(document, found);
    } else {
        checkJson(document, registry, catalogue, found);
        appendKeyWarnings(document, found);
    }
    std::ranges::stable_sort(found, {},
                             [](const Diagnostic& each) { return std::tuple(each.place.begin, each.place.end); });
    return found;
}

}  // namespace Brenta::OS::VIG::Tool
