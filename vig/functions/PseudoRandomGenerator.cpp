#include "vig/functions/PseudoRandomGenerator.h"

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cmath>

namespace Brenta::OS::VIG {

namespace {

std::uint32_t seedOfProcess() {
    const auto time = static_cast<std::uint64_t>(std::chrono::system_clock::now().time_since_epoch().count());
    return PseudoRandomGenerator::readSeed("/dev/urandom").value_or(PseudoRandomGenerator::seedFrom(time, getpid()));
}

}  // namespace

PseudoRandomGenerator::PseudoRandomGenerator(std::uint32_t value) : engine(value) {}

PseudoRandomGenerator& PseudoRandomGenerator::ofProcess() {
    static PseudoRandomGenerator generator(seedOfProcess());
    return generator;
}

void PseudoRandomGenerator::seed(std::uint32_t value) {
    const std::lock_guard lock(mutex);
    engine.seed(value);
}

double PseudoRandomGenerator::draw() {
    const std::lock_guard lock(mutex);
    const auto first = static_cast<std::uint32_t>(engine());
    const auto second = static_cast<std::uint32_t>(engine());
    return toDouble(first, second);
}

double PseudoRandomGenerator::toDouble(std::uint32_t first, std::uint32_t second) {
    const double quotient = (second * 4294967296.0 + first) * 0x1p-64;
    // The sum rounds up to 2^64 for the very largest outputs.
    return quotient < 1.0 ? quotient : std::nextafter(1.0, 0.0);
}

// std::random_device would throw where the device is missing. The device yields so few bytes at once.
std::optional<std::uint32_t> PseudoRandomGenerator::readSeed(const char* devicePath) {
    const int device = open(devicePath, O_RDONLY | O_CLOEXEC);
    if (device < 0) {
        return std::nullopt;
    }
    std::uint32_t value = 0;
    const ssize_t got = read(device, &value, sizeof value);
    close(device);
    return got == ssize_t{sizeof value} ? std::optional(value) : std::nullopt;
}

std::uint32_t PseudoRandomGenerator::seedFrom(std::uint64_t time, std::int32_t process) {
    return static_cast<std::uint32_t>(time ^ (time >> 32)) ^ (static_cast<std::uint32_t>(process) << 16);
}

}  // namespace Brenta::OS::VIG
