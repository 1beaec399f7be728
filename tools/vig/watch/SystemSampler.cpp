#include "tools/vig/watch/SystemSampler.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "tools/vig/io/Descriptor.h"
#include "tools/vig/words/Text.h"
#include "vig/base/Utf8.h"

namespace Brenta::OS::VIG::Tool {

using RulesEngine::EventType;

namespace {

// "AnonPages: 4 kB" of the kernel is the attribute anonPagesKB.
constexpr std::string_view kMemoryInfo[] = {"AnonPages",    "Buffers",  "Cached",   "Dirty", "Mapped",
                                            "MemAvailable", "MemFree",  "MemTotal", "Shmem", "Slab",
                                            "SwapCached",   "SwapFree", "SwapTotal"};

// mm_stat has these columns, in this order.
constexpr auto kZramColumns = std::to_array<std::string_view>(
    {"origDataBytes", "numCompressedDataBytes", "memUsedTotalBytes", "memLimitBytes", "memUsedMaxBytes", "samePages",
     "pagesCompacted", "hugePages", "hugePagesSinceBoot"});

template <typename T>
std::optional<T> toNumber(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    T number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

// Returns the rest of the first line that begins like that.
std::optional<std::string_view> afterPrefix(std::string_view text, std::string_view prefix) {
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        if (line.starts_with(prefix)) {
            return line.substr(prefix.size());
        }
        text.remove_prefix(std::min(line.size() + 1, text.size()));
    }
    return std::nullopt;
}

template <typename T>
std::optional<T> numberAfter(std::string_view text, std::string_view prefix) {
    const auto rest = afterPrefix(text, prefix);
    return rest ? toNumber<T>(*rest) : std::nullopt;
}

std::vector<std::string_view> words(std::string_view text) {
    std::vector<std::string_view> result;
    constexpr std::string_view kSpace = " \t\n";
    for (std::size_t begin = text.find_first_not_of(kSpace); begin < text.size();) {
        const std::size_t end = std::min(text.find_first_of(kSpace, begin), text.size());
        result.push_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(kSpace, end);
    }
    return result;
}

// The kernel writes a line feed and a backslash in a name as escapes.
std::string unescaped(std::string_view name) {
    std::string result;
    for (std::size_t i = 0; i < name.size(); ++i) {
        const bool escape = name[i] == '\\' && i + 1 < name.size();
        result += !escape ? name[i] : name[++i] == 'n' ? '\n' : name[i];
    }
    return replaceInvalidUtf8(result);
}

struct Stat {
    std::uint64_t ticks;
    std::uint64_t startTime;
};

// The name, in parentheses, may have spaces and parentheses itself.
std::optional<Stat> parseStat(std::string_view text) {
    const std::size_t nameEnd = text.rfind(')');
    const auto fields = words(nameEnd == std::string_view::npos ? "" : text.substr(nameEnd + 1));
    if (fields.size() < 20) {
        return std::nullopt;
    }
    const auto user = toNumber<std::uint64_t>(fields[11]);
    const auto system = toNumber<std::uint64_t>(fields[12]);
    const auto start = toNumber<std::uint64_t>(fields[19]);
    return user && system && start ? std::optional(Stat{*user + *system, *start}) : std::nullopt;
}

// Returns the names in the folder, or none, with errno set, if it cannot be read.
std::vector<std::string> namesIn(const std::string& path) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> folder(opendir(path.c_str()), closedir);
    while (const dirent* const entry = folder ? readdir(folder.get()) : nullptr) {
        names.emplace_back(entry->d_name);
    }
    return names;
}

bool vanished(int error) {
    return error == ENOENT || error == ESRCH;
}

}  // namespace

SystemSampler::SystemSampler(std::string procFolder, std::string sysFolder, Clock clockOfProcesses, Note noteReceiver)
    : proc(std::move(procFolder)),
      sys(std::move(sysFolder)),
      clock(std::move(clockOfProcesses)),
      note(std::move(noteReceiver)),
      ticksPerSecond(static_cast<double>(sysconf(_SC_CLK_TCK))) {}

void SystemSampler::sample(std::int64_t timeMs, const Receiver& receive) {
    time = timeMs;
    sampleSystemMemory(receive);
    sampleZram(receive);
    sampleProcesses(receive);
}

void SystemSampler::sampleSystemMemory(const Receiver& receive) {
    begin(EventType::SystemMemoryHeartBeat);
    const bool hasMemoryInfo = addMemoryInfo();
    const bool hasPressure = addPressure();
    if (hasMemoryInfo || hasPressure) {
        send(receive);
    }
}

bool SystemSampler::addMemoryInfo() {
    if (!read(proc + "/meminfo", text)) {
        noteOnce(proc + "/meminfo", "no amounts in SystemMemoryHeartBeat", errno);
        return false;
    }
    for (const std::string_view name : kMemoryInfo) {
        if (const auto amount = numberAfter<std::int64_t>(text, std::string(name) + ":")) {
            std::string attribute = std::string(name) + "KB";
            attribute[0] = static_cast<char>(attribute[0] - 'A' + 'a');
            record.attributes.add<std::int64_t>(attribute, *amount);
        }
    }
    return true;
}

bool SystemSampler::addPressure() {
    if (!read(proc + "/pressure/memory", text)) {
        noteOnce(proc + "/pressure/memory", "no pressure in SystemMemoryHeartBeat", errno);
        return false;
    }
    for (const auto& [stalled, attribute] : {std::pair("full", "psiFullAvg"), {"some", "psiSomeAvg"}}) {
        const auto line = afterPrefix(text, stalled).value_or("");
        for (const std::string seconds : {"10", "60", "300"}) {
            const std::string label = " avg" + seconds + "=";
            const std::size_t place = std::min(line.find(label), line.size());
            const auto share = toNumber<double>(line.substr(std::min(place + label.size(), line.size())));
            if (share && std::isfinite(*share)) {
                record.attributes.add<double>(attribute + seconds, *share);
            }
        }
    }
    return true;
}

void SystemSampler::sampleZram(const Receiver& receive) {
    auto devices = namesIn(sys + "/block");
    std::erase_if(devices, [](const std::string& name) { return !name.starts_with("zram"); });
    if (devices.empty()) {
        noteOnce(sys + "/block/zram*", "no ZramHeartBeat", ENOENT);
    }
    std::ranges::sort(devices, {}, [](const std::string& name) { return std::pair(name.size(), name); });
    for (const std::string& device : devices) {
        if (!read(sys + "/block/" + device + "/mm_stat", text)) {
            noteOnce(sys + "/block/" + device + "/mm_stat", "no ZramHeartBeat of it", errno);
            continue;
        }
        begin(EventType::ZramHeartBeat).attributes.add<std::string_view>("device", replaceInvalidUtf8(device));
        const auto columns = words(text);
        for (std::size_t i = 0; i < std::min(columns.size(), kZramColumns.size()); ++i) {
            if (const auto number = toNumber<std::uint64_t>(columns[i])) {
                record.attributes.add<std::uint64_t>(kZramColumns[i], *number);
            }
        }
        send(receive);
    }
}

void SystemSampler::sampleProcesses(const Receiver& receive) {
    errno = 0;
    std::vector<std::int64_t> pids;
    for (const std::string& name : namesIn(proc)) {
        if (name.find_first_not_of("0123456789") == std::string::npos) {
            pids.push_back(toNumber<std::int64_t>(name).value_or(0));
        }
    }
    if (pids.empty()) {
        noteOnce(proc, "no events of processes", errno == 0 ? ENOENT : errno);
    }
    std::ranges::sort(pids);
    std::unordered_map<std::int64_t, CpuUse> uses;
    for (const std::int64_t pid : pids) {
        sampleProcess(pid, receive, uses);
    }
    cpuUses = std::move(uses);
}

void SystemSampler::sampleProcess(std::int64_t pid, const Receiver& receive,
                                  std::unordered_map<std::int64_t, CpuUse>& uses) {
    const std::string folder = proc + "/" + std::to_string(pid);
    if (!read(folder + "/status", text)) {
        if (!vanished(errno)) {
            noteOnce(proc + "/PID/status", "no events of some processes", errno);
        }
        return;
    }
    const auto resident = numberAfter<std::int64_t>(text, "VmRSS:");
    if (!resident) {
        return;
    }
    const std::string name = unescaped(afterPrefix(text, "Name:\t").value_or(""));
    begin(EventType::ProcessMemoryHeartBeat);
    record.attributes.add<std::int64_t>("pid", pid);
    record.attributes.add<std::int64_t>("vmRssKB", *resident);
    record.attributes.add<std::int64_t>("vmSwapKB", numberAfter<std::int64_t>(text, "VmSwap:").value_or(0));
    record.attributes.add<std::string_view>("processName", name);
    send(receive);

    const auto stat = read(folder + "/stat", text) ? parseStat(text) : std::nullopt;
    if (!stat) {
        return;
    }
    const CpuUse now{stat->startTime, stat->ticks, clock()};
    uses.emplace(pid, now);
    const auto before = cpuUses.find(pid);
    if (before == cpuUses.end() || before->second.startTime != now.startTime || before->second.when >= now.when) {
        return;
    }
    const double seconds = std::chrono::duration<double>(now.when - before->second.when).count();
    const std::uint64_t used = now.ticks - std::min(now.ticks, before->second.ticks);
    const double percent = 100 * static_cast<double>(used) / ticksPerSecond / seconds;
    begin(EventType::ProcessCpuHeartBeat);
    // The kernel's ticks allow no finer statement.
    record.attributes.add<double>("cpuAvgUtilization", std::round(percent * 100) / 100);
    record.attributes.add<std::int64_t>("pid", pid);
    record.attributes.add<std::string_view>("processName", name);
    send(receive);
}

EventRecord& SystemSampler::begin(EventType type) {
    record.type = type;
    record.timeMs = time;
    record.attributes.clear();
    return record;
}

void SystemSampler::send(const Receiver& receive) {
    record.attributes.sort<std::uint64_t>();
    record.attributes.sort<std::int64_t>();
    record.attributes.sort<double>();
    record.attributes.sort<std::string_view>();
    receive(record);
}

// If it fails, errno says why.
bool SystemSampler::read(const std::string& path, std::string& content) {
    content.clear();
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 4096> buffer;
    while (file.isOpen()) {
        const ssize_t got = ::read(file.get(), buffer.data(), buffer.size());
        if (got == 0) {
            return true;
        }
        if (got > 0) {
            content.append(buffer.data(), static_cast<std::size_t>(got));
        } else if (errno != EINTR) {
            break;
        }
    }
    return false;
}

void SystemSampler::noteOnce(const std::string& source, const std::string& consequence, int error) {
    if (noted.insert(source).second) {
        note(source + ": " + systemError(error) + ": " + consequence);
    }
}

}  // namespace Brenta::OS::VIG::Tool
