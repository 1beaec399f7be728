#include "tools/vig/document/Registry.h"

#include "vig/VIGManager.h"

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

}  // namespace Brenta::OS::VIG::Tool
