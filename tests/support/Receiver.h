#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "vig/VIGManager.h"

namespace support {

// Receives the deliveries of a manager and remembers how many configurations each had.
class Receiver {
  public:
    Brenta::OS::VIG::VIGManager::Callback callback() {
        return [this, held = token](std::vector<std::unique_ptr<Brenta::OS::VIG::VIGConfig>>&& configs) {
            const std::lock_guard lock(mutex);
            counts.push_back(configs.size());
            latest = std::move(configs);
            received.notify_all();
        };
    }

    // Returns once there were that many deliveries.
    void waitFor(std::size_t deliveries) {
        std::unique_lock lock(mutex);
        const auto came = [&] { return counts.size() >= deliveries; };
        ASSERT_TRUE(received.wait_for(lock, std::chrono::seconds(30), came)) << "no delivery within 30 s";
    }

    std::vector<std::size_t> sizes() const {
        const std::lock_guard lock(mutex);
        return counts;
    }

    std::vector<std::unique_ptr<Brenta::OS::VIG::VIGConfig>> takeLatest() {
        const std::lock_guard lock(mutex);
        return std::move(latest);
    }

    // Returns how many copies of the callback are alive.
    long uses() const { return token.use_count() - 1; }

  private:
    std::shared_ptr<int> token = std::make_shared<int>();
    mutable std::mutex mutex;
    std::condition_variable received;
    std::vector<std::size_t> counts;
    std::vector<std::unique_ptr<Brenta::OS::VIG::VIGConfig>> latest;
};

}  // namespace support
