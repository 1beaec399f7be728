#pragma once

#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "tests/support/TemporaryFolder.h"
#include "tools/vig/Verbs.h"

namespace support {

namespace Tool = Brenta::OS::VIG::Tool;

// It is a file in memory, as one of the streams of a verb.
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

struct ToolResult {
    int status;
    std::string out;
    std::string err;
};

template <typename Options>
ToolResult runVerb(int (*verb)(const Options&, const Tool::Console&, const Tool::Interruption&), const Options& options,
                   std::string_view input = {}) {
    const MemoryFile in(input);
    const MemoryFile out;
    const MemoryFile err;
    const Tool::Interruption interruption;
    const int status = verb(options, {in.descriptor, out.descriptor, err.descriptor}, interruption);
    return {status, out.content(), err.content()};
}

// Runs the tool with these arguments; it observes the machine that writeMachine() has written to that folder.
inline int runTool(const std::vector<std::string>& arguments, const Tool::Console& console,
                   const Tool::Interruption& interruption, const std::filesystem::path& machine = {}) {
    std::vector<const char*> all = {"vig"};
    std::ranges::transform(arguments, std::back_inserter(all), &std::string::c_str);
    Tool::Verbs verbs;
    verbs.watch.procFolder = machine / "proc";
    verbs.watch.sysFolder = machine / "sys";
    const auto status = verbs.commandLine.parse(static_cast<int>(all.size()), all.data(), console);
    return status ? *status : verbs.commandLine.run(console, interruption);
}

// Interrupts as soon as all that is in the pipe has been read.
inline std::jthread interruptOnceRead(int pipe, Tool::Interruption& interruption) {
    return std::jthread([pipe, &interruption] {
        for (int unread = 1; unread > 0; ioctl(pipe, FIONREAD, &unread)) {
            std::this_thread::yield();
        }
        interruption.request();
    });
}

// Returns what a shell command writes, errors included.
inline std::string outputOf(const std::string& command) {
    std::FILE* const pipe = popen(("(" + command + ") 2>&1").c_str(), "r");
    std::array<char, 4096> piece;
    std::string output;
    while (const std::size_t size = std::fread(piece.data(), 1, piece.size(), pipe)) {
        output.append(piece.data(), size);
    }
    pclose(pipe);
    return output;
}

// Writes the folders "proc" and "sys" of a machine that has all that the tool observes, with one process of that name.
inline void writeMachine(const TemporaryFolder& folder, const std::string& process) {
    for (const char* const each : {"proc/1", "proc/pressure", "sys/block/zram0"}) {
        std::filesystem::create_directories(folder.path(each));
    }
    folder.write("proc/meminfo", "MemTotal: 4000 kB\nMemFree: 3000 kB\nMemAvailable: 3500 kB\nCached: 20 kB\n");
    const std::string pressure = " avg10=1.50 avg60=0.25 avg300=0.00 total=12\n";
    folder.write("proc/pressure/memory", "some" + pressure + "full" + pressure);
    folder.write("proc/1/status", "Name:\t" + process + "\nVmRSS:\t100 kB\nVmSwap:\t10 kB\n");
    folder.write("proc/1/stat", "1 (" + process + ") S 1 1 1 0 -1 0 0 0 0 0 7 0 0 0 20 0 1 0 5 1 1\n");
    folder.write("sys/block/zram0/mm_stat", "1 2 3 4 5 6 7 8 9\n");
}

// Returns the lines that begin like that.
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
