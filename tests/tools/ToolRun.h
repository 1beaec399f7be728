#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/vig/Console.h"
#include "tools/vig/Interruption.h"

namespace support {

// A file in memory, as one of the streams of a verb.
class MemoryFile {
  public:
    explicit MemoryFile(std::string_view content = {}) {
        EXPECT_EQ(write(descriptor, content.data(), content.size()), static_cast<ssize_t>(content.size()));
        lseek(descriptor, 0, SEEK_SET);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(descriptor); }

    std::string content() const {
        std::string text(static_cast<std::size_t>(lseek(descriptor, 0, SEEK_END)), '\0');
        EXPECT_EQ(pread(descriptor, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
        return text;
    }

    const int descriptor = memfd_create("stream", MFD_CLOEXEC);
};

// What came of a verb.
struct ToolResult {
    int status;
    std::string out;
    std::string err;
};

template <typename Options>
ToolResult runVerb(int (*verb)(const Options&, const tool::Console&, const tool::Interruption&), const Options& options,
                   std::string_view input = {}) {
    const MemoryFile in(input);
    const MemoryFile out;
    const MemoryFile err;
    const tool::Interruption interruption;
    const int status = verb(options, {in.descriptor, out.descriptor, err.descriptor}, interruption);
    return {status, out.content(), err.content()};
}

// The lines that begin like that.
inline std::vector<std::string> linesWith(std::string_view text, std::string_view prefix) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        const std::string_view line = text.substr(begin, end - begin);
        if (line.starts_with(prefix)) {
            lines.emplace_back(line);
        }
        begin = end + 1;
    }
    return lines;
}

}  // namespace support
