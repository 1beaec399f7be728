#pragma once

#include <gtest/gtest.h>
#include <locale.h>

#include <locale>
#include <string>
#include <utility>

namespace support {

#ifdef __cpp_rtti  // without type information the library cannot take a facet of ours
// As long as it lives, C++ streams read and write decimal commas and group thousands with points.
class CommaLocale {
  public:
    explicit CommaLocale(std::string grouping)
        : previous(std::locale::global(std::locale(std::locale::classic(), new Punctuation(std::move(grouping))))) {}
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;
    ~CommaLocale() { std::locale::global(previous); }

  private:
    class Punctuation : public std::numpunct<char> {
      public:
        explicit Punctuation(std::string digits) : grouping(std::move(digits)) {}

      protected:
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return grouping; }

      private:
        const std::string grouping;
    };

    const std::locale previous;
};
#endif

// Runs `check` in locales of the process that have a decimal comma: of the C++ streams alone, without and with
// groups of three digits, of the C library alone, and of both. LOCPATH leads to the last two in the build folder.
template <typename Check>
void inCommaLocales(const Check& check) {
#ifdef __cpp_rtti
    for (const char* grouping : {"", "\3"}) {
        SCOPED_TRACE(grouping[0] == '\0' ? "C++ locale without groups" : "C++ locale with groups");
        const CommaLocale locale(grouping);
        check();
    }
#endif
    SCOPED_TRACE("named locale");
    ASSERT_NE(setlocale(LC_ALL, "de_DE.UTF-8"), nullptr);
    check();
    const std::locale previous = std::locale::global(std::locale("de_DE.UTF-8"));
    check();
    std::locale::global(previous);
    setlocale(LC_ALL, "C");
}

}  // namespace support
