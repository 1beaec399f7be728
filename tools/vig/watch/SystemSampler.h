#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>

#include "tools/vig/events/EventRecord.h"

namespace Brenta::OS::VIG::Tool {

// Observes this machine through the files in which the kernel shows it.
class SystemSampler {
  public:
    // It tells time that passes evenly, since any moment.
    using Clock = std::function<std::chrono::nanoseconds()>;

    // Says once for each source that the system does not have what is missing, and why.
    using Note = std::function<void(std::string_view)>;

    // The folders are usually "/proc" and "/sys".
    SystemSampler(std::string procFolder, std::string sysFolder, Clock clockOfProcesses, Note noteReceiver);

    // Calls `receive` with the events of one sample: the system's memory, each zram device, and each process in the
    // order of their pids. A process's CPU share is that since the last sample, so that there is none in the first.
    // Kernel threads and processes that vanish meanwhile are left out. `timeMs` is the time of the sample.
    void sample(std::int64_t timeMs, const std::function<void(const EventRecord&)>& receive);

  private:
    using Receiver = std::function<void(const EventRecord&)>;

    // It says how much a process had used at some time.
    struct CpuUse {
        std::uint64_t startTime;  // tells a process from an earlier one with the same pid
        std::uint64_t ticks;
        std::chrono::nanoseconds when;
    };

    void sampleSystemMemory(const Receiver& receive);
    bool addMemoryInfo();
    bool addPressure();
    void sampleZram(const Receiver& receive);
    void sampleProcesses(const Receiver& receive);
    void sampleProcess(std::int64_t pid, const Receiver& receive, std::unordered_map<std::int64_t, CpuUse>& uses);

    EventRecord& begin(RulesEngine::EventType type);
    void send(const Receiver& receive);
    bool read(const std::string& path, std::string& content);
    void noteOnce(const std::string& source, const std::string& consequence, int error);

    const std::string proc;
    const std::string sys;
    const Clock clock;
    const Note note;
    const double ticksPerSecond;
    std::set<std::string> noted;
    std::unordered_map<std::int64_t, CpuUse> cpuUses;  // by pid, of the last sample
    std::int64_t time = 0;
    EventRecord record;
    std::string text;  // of the file that is being read
};

}  // namespace Brenta::OS::VIG::Tool
