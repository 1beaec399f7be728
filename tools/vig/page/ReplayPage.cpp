#include "tools/vig/page/ReplayPage.h"

#include <fmt/format.h>
#include <zlib.h>

#include <charconv>
#include <span>
#include <utility>

#include "tools/vig/graph/Pictures.h"
#include "tools/vig/page/PageFiles.h"
#include "tools/vig/words/Text.h"

namespace Brenta::OS::VIG::Tool {

namespace {

std::string base64(std::string_view bytes) {
    constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr std::size_t kGroup = 3;
    std::string text;
    text.reserve((bytes.size() + kGroup - 1) / kGroup * 4);
    for (std::size_t begin = 0; begin < bytes.size(); begin += kGroup) {
        const std::string_view group = bytes.substr(begin, kGroup);
        std::uint32_t bits = 0;
        for (std::size_t i = 0; i < kGroup; ++i) {
            bits = bits << 8 | (i < group.size() ? static_cast<unsigned char>(group[i]) : 0U);
        }
        for (std::size_t digit = 0; digit <= kGroup; ++digit) {
            text += digit <= group.size() ? kDigits[bits >> (18 - 6 * digit) & 63] : '=';
        }
    }
    return text;
}

std::string compressed(std::string_view bytes) {
    constexpr int kGzip = 16 + MAX_WBITS;
    z_stream stream = {};
    // What the system refuses is told as wherever the tool asks for memory.
    stream.zalloc = [](voidpf, uInt count, uInt size) { return ::operator new (std::size_t{count} * size); };
    stream.zfree = [](voidpf, voidpf address) { ::operator delete(address); };
    deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzip, MAX_MEM_LEVEL, Z_DEFAULT_STRATEGY);
    std::string result(deflateBound(&stream, bytes.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    deflate(&stream, Z_FINISH);
    result.resize(stream.total_out);
    deflateEnd(&stream);
    return result;
}

// Returns the word by which the page's policy lets a file run, or style.
std::string sourceOf(const PageFile& file) {
    std::string bytes;
    for (std::size_t i = 0; i < file.sha256.size(); i += 2) {
        unsigned char byte = 0;
        std::from_chars(file.sha256.data() + i, file.sha256.data() + i + 2, byte, 16);
        bytes += static_cast<char>(byte);
    }
    return "'sha256-" + base64(bytes) + "'";
}

std::string escaped(std::string_view text) {
    std::string html;
    for (const char each : text) {
        html += each == '&' ? "&amp;" : each == '<' ? "&lt;" : std::string(1, each);
    }
    return html;
}

std::string recordingJson(const PageRecording& recording) {
    return fmt::format(R"({{"name":{},"facts":{},"event":{},"machine":{},"compared":{}}})",
                       inQuotes(printable(recording.name)), jsonArray(recording.facts, inQuotes),
                       recording.event ? std::to_string(*recording.event) : "null", recording.machine,
                       recording.isComparison);
}

// Nothing in it ends the element that has it.
std::string withoutTags(const std::string& json) {
    std::string text;
    for (const char each : json) {
        text += each == '<' ? "\\u003c" : std::string(1, each);
    }
    return text;
}

}  // namespace

std::string replayPage(std::string_view title, const PageNote& note, const std::vector<PageRecording>& recordings) {
    const std::span<const PageFile> files = pageFiles();
    const PageFile& markup = files[0];
    const PageFile& style = files[1];
    const auto scripts = files.subspan(2);
    std::string page = fmt::format(
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; script-src {}; style-src {}; "
        "base-uri 'none'; form-action 'none'\">\n<title>{}</title>\n<style>{}</style>\n</head>\n<body>\n{}",
        joined(scripts, " ", sourceOf), sourceOf(style), escaped(printable(title)), style.text, markup.text);
    page += fmt::format(
        R"(<script type="application/json" id="page">{}</script>)"
        "\n",
        withoutTags(fmt::format(R"({{"title":{},"program":"vig {}","summary":{},"note":{},"recordings":{}}})",
                                inQuotes(printable(title)), VIG_VERSION, inQuotes(note.summary), inQuotes(note.text),
                                jsonArray(recordings, recordingJson))));
    // The program comes first, so that of a file that is cut off it can say so.
    for (const PageFile& script : scripts) {
        page += fmt::format("<script>{}</script>\n", script.text);
    }
    for (const PageRecording& each : recordings) {
        page +=
            R"(<script type="application/gzip" class="recording">)" + base64(compressed(each.content)) + "</script>\n";
    }
    return page + "</body>\n</html>\n";
}

PagePicture pagePictureOf(const std::vector<RuleGraph>& graphs, const Console& console,
                          const Interruption& interruption) {
    Rendering rendering = renderGraph(dotOf(graphs, ""), "svg", interruption);
    if (rendering.status == Rendering::Status::Done) {
        return {std::move(rendering.image), ""};
    }
    const bool isMissing = rendering.status == Rendering::Status::Missing;
    std::string why = isMissing ? "the program dot of Graphviz is not installed"
                                : "Graphviz failed: " + printable(rendering.messages);
    if (rendering.status != Rendering::Status::Interrupted) {
        console.say("vig: note: the page has no picture of the machines: " + why);
    }
    return {"", std::move(why)};
}

}  // namespace Brenta::OS::VIG::Tool
