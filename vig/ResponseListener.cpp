#include "vig/ResponseListener.h"

#include <cassert>
#include <utility>

namespace Brenta::OS::VIG {

using com::korvel::deviceconfig::Properties;

ResponseListener::ResponseListener(std::function<void(const Properties&)> changeHandler)
    : handler(std::move(changeHandler)) {
    assert(handler);
}

void ResponseListener::onPropertiesChanged(Properties properties) {
    // The library may let go of the listener while the handler runs.
    const auto self = weak_from_this().lock();
    handler(properties);
}

ResponseListener::~ResponseListener() = default;

}  // namespace Brenta::OS::VIG
