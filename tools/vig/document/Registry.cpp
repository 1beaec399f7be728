#include "tools/vig/document/Registry.h"

#include <utility>

#include "vig/VIGManager.h"
#include "vig/functions/DoubleFunctions.h"

namespace Brenta::OS::VIG::Tool {

namespace {

class Manager final : public VIGManager {
  public:
    using VIGManager::createParserConfig;
};

}  // namespace

VIGParserConfig libraryRegistry() {
    return Manager().createParserConfig();
}

VIGParserConfig withDraws(const VIGParserConfig& library, const std::function<double()>& draw) {
    auto doubleFunctions = library.getDoublePureFunctions();
    for (const DoubleFunction& each : kDoubleFunctions) {
        if (each.isRandom) {
            doubleFunctions.insert_or_assign(
                each.name, [draw, least = each.least, limit = each.limit] { return least + (limit - least) * draw(); });
        }
    }
    // Filters have no use for functions that return bool.
    return VIGParserConfig(library.getEventTypes(), library.getActionFunctionFactories(),
                           library.getInt64PureFunctions(), std::move(doubleFunctions),
                           library.getStringPureFunctions(), {});
}

}  // namespace Brenta::OS::VIG::Tool
