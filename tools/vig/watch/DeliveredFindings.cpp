#include "tools/vig/watch/DeliveredFindings.h"

#include <algorithm>
#include <vector>

#include "tools/vig/catalogue/Catalogue.h"
#include "tools/vig/check/DocumentCheck.h"
#include "tools/vig/document/Registry.h"
#include "tools/vig/findings/FindingWriters.h"

namespace Brenta::OS::VIG::Tool {

void DeliveredFindings::tell(const DocumentText& document) {
    Findings findings = findingsIn(document, libraryRegistry(), Catalogue::builtIn(), &interruption);
    const bool isRefused = std::ranges::count(findings.all, Severity::Error, &Finding::severity) > 0;
    std::multiset<Warning> before = known;
    if (!isRefused) {
        known.clear();
    }
    std::erase_if(findings.all, [&](const Finding& each) {
        if (each.severity == Severity::Error) {
            return false;
        }
        const auto old = before.find({each.name, each.message});
        const bool isNew = old == before.end();
        if (isNew || !isRefused) {
            known.emplace(each.name, each.message);
        }
        if (!isNew) {
            before.erase(old);
        }
        return !isNew;
    });
    console.sayText(textOf(document.source(), findings));
}

}  // namespace Brenta::OS::VIG::Tool
