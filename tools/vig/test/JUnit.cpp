#include "tools/vig/test/JUnit.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG::Tool {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// XML does not allow U+FFFE and U+FFFF.
bool isNoCharacter(std::string_view text) {
    return text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF");
}

std::string xml(std::string_view text) {
    const std::string valid = replaceInvalidUtf8(std::string(text));
    std::string escaped;
    for (std::size_t place = 0; place < valid.size(); ++place) {
        const char each = valid[place];
        if (isNoCharacter(std::string_view(valid).substr(place))) {
            escaped += kReplacement;
            place += 2;
        } else if (each == '&' || each == '<' || each == '>' || each == '"' || each == '\n' || each == '\t') {
            escaped += fmt::format("&#{};", static_cast<int>(each));
        } else if (static_cast<unsigned char>(each) < 0x20) {
            escaped += kReplacement;
        } else {
            escaped += each;
        }
    }
    return escaped;
}

std::string caseXml(const TestVerdict& verdict) {
    std::string text = fmt::format(R"(    <testcase classname="{}" name="{}")", xml(verdict.file), xml(verdict.name));
    if (verdict.failure.empty()) {
        return text + "/>\n";
    }
    const std::string& first = verdict.failure.front();
    text += fmt::format(R"(><failure message="{}">)", xml(first.substr(first.find_first_not_of(' '))));
    for (const std::string& line : verdict.failure) {
        text += xml(line) + "\n";
    }
    return text + "</failure></testcase>\n";
}

}  // namespace

std::string junitXml(const std::vector<TestVerdict>& verdicts) {
    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites>\n";
    for (auto begin = verdicts.begin(); begin != verdicts.end();) {
        const auto end =
            std::find_if(begin, verdicts.end(), [&](const auto& each) { return each.file != begin->file; });
        const auto failed = std::count_if(begin, end, [](const auto& each) { return !each.failure.empty(); });
        text += fmt::format("  <testsuite name=\"{}\" tests=\"{}\" failures=\"{}\">\n", xml(begin->file), end - begin,
                            failed);
        for (; begin != end; ++begin) {
            text += caseXml(*begin);
        }
        text += "  </testsuite>\n";
    }
    return text + "</testsuites>\n";
}

}  // namespace Brenta::OS::VIG::Tool
