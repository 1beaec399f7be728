#include "tools/vig/Registry.h"

#include "vig/VIGManager.h"

namespace tool {

namespace {

class Manager final : public Brenta::OS::VIG::VIGManager {
  public:
    using VIGManager::createParserConfig;
};

}  // namespace

Brenta::OS::VIG::VIGParserConfig libraryRegistry() {
    return Manager().createParserConfig();
}

}  // namespace tool
