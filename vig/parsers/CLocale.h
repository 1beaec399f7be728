#pragma once

#include <locale.h>

namespace Brenta::OS::VIG {

// The locale in which documents are written, whatever the process has set.
locale_t cLocale();

// Makes it the calling thread's own for as long as the object lives, for library calls that take no locale.
class ScopedCLocale {
  public:
    ScopedCLocale() : previous(uselocale(cLocale())) {}
    ScopedCLocale(const ScopedCLocale&) = delete;
    ScopedCLocale& operator=(const ScopedCLocale&) = delete;
    ~ScopedCLocale() { uselocale(previous); }

  private:
    const locale_t previous;
};

}  // namespace Brenta::OS::VIG
