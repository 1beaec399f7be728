#include "vig/parsers/CLocale.h"

namespace Brenta::OS::VIG {

locale_t cLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

}  // namespace Brenta::OS::VIG
