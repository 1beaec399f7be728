#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <random>

namespace Brenta::OS::VIG {

// The generator is MT19937, with doubles spread evenly over [0, 1). It is safe to use from several threads.
class PseudoRandomGenerator {
  public:
    explicit PseudoRandomGenerator(std::uint32_t value);

    // Returns the generator behind "PseudoRandomDouble", seeded from /dev/urandom on first use. Tests and tools seed
    // it to repeat a run.
    static PseudoRandomGenerator& ofProcess();

    void seed(std::uint32_t value);
    double draw();

    // Returns the number in [0, 1) for two successive outputs of the engine.
    static double toDouble(std::uint32_t first, std::uint32_t second);

    // Returns a seed read from the device, or nothing if it cannot be opened or does not yield enough bytes.
    static std::optional<std::uint32_t> readSeed(const char* devicePath);

    // Returns the seed without the device, which need not be secret: it differs from start to start, by the time, and
    // between processes that start at the same time.
    static std::uint32_t seedFrom(std::uint64_t time, std::int32_t process);

  private:
    std::mutex mutex;
    std::mt19937 engine;  // guarded by mutex
};

}  // namespace Brenta::OS::VIG
