#pragma once

#include <span>
#include <string_view>

namespace Brenta::OS::VIG::Tool {

// It is a file of the replay page's program, as it stands beside this header.
struct PageFile {
    std::string_view name;  // "page.js"
    std::string_view text;
    std::string_view sha256;  // of the text, in hexadecimal digits
};

// Returns them in the order in which a page has them: the markup of its body, its style, and the scripts.
std::span<const PageFile> pageFiles();

}  // namespace Brenta::OS::VIG::Tool
