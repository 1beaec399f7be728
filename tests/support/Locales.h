#pragma once

#include <gtest/gtest.h>
#include <locale.h>

#include <locale>

namespace support {

// Runs `check` in locales of the process that have a decimal comma and groups of digits: of the C library alone, and of
// the C++ streams too. LOCPATH leads to them in the build folder.
template <typename Check>
void inCommaLocales(const Check& check) {
    ASSERT_NE(setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
    check();
    const std::locale previous = std::locale::global(std::locale("de_DE.UTF-8"));
    check();
    std::locale::global(previous);
    setlocale(LC_ALL, "C");
}

}  // namespace support
