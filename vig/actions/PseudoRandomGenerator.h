#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <random>

namespace Brenta::OS::VIG {

// MT19937 with doubles spread evenly over [0, 1). Safe to use from several threads.
class PseudoRandomGenerator {
  public:
    explicit PseudoRandomGenerator(std::uint32_t value);

    // The generator behind "PseudoRandomDouble", seeded from /dev/urandom on first use. Tests and tools seed
    // it to repeat a run.
    static PseudoRandomGenerator& ofProcess();

    void seed(std::uint32_t value);
    double draw();

    // The number in [0, 1) for two successive outputs of the engine.
    static double toDouble(std::uint32_t first, std::uint32_t second);

    // A seed read from the device, or empty if it cannot be opened or does not yield enough bytes.
    static std::optional<std::uint32_t> readSeed(const char* devicePath);

    // The seed without the device, which need not be secret: it differs from start to start, by the time, and between
    // processes that start at the same time.
    static std::uint32_t seedFrom(std::uint64_t time, std::int32_t process);

  private:
    std::mutex mutex;
    std::mt19937 engine;  // guarded by mutex
};

}  // namespace Brenta::OS::VIG
