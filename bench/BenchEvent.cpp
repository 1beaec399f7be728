#include "bench/BenchEvent.h"

namespace bench {

std::optional<std::int64_t> MemoryEvent::getInt64Attr(std::string_view key) const {
    if (key == "vmRssKB") {
        return 217'024;
    }
    if (key == "vmSwapKB") {
        return 1'024;
    }
    if (key == "pid") {
        return 4'711;
    }
    return std::nullopt;
}

std::optional<double> MemoryEvent::getDoubleAttr(std::string_view key) const {
    if (key == "growth") {
        return 1.25;
    }
    if (key == "share") {
        return 0.5;
    }
    if (key == "pressure") {
        return 0.125;
    }
    return std::nullopt;
}

std::string_view MemoryEvent::getStringAttr(std::string_view key) const {
    if (key == "processName") {
        return "com.example.camera";
    }
    if (key == "package") {
        return "com.example";
    }
    if (key == "state") {
        return "foreground";
    }
    return {};
}

}  // namespace bench
