#pragma once

#include <atomic>
#include <chrono>
#include <memory>

#include "platform/linux/SystemCalls.h"

namespace norvane {

// System calls of a machine that does not exist, with a clock that only the test moves.
class FakeSystemCalls {
 public:
    SystemCalls calls;

    FakeSystemCalls() {
        calls.machine = "x86_64";
        calls.memoryBytes = [] { return std::uint64_t{3} << 30; };
        calls.bootSeconds = [] { return 1234.5; };
        calls.fileSystemSpace = [](const std::string&) { return std::nullopt; };
        calls.now = [time = time_] { return MonotonicInstant(std::chrono::nanoseconds(time->load())); };
    }

    void advance(std::chrono::nanoseconds by) { *time_ += by.count(); }

 private:
    std::shared_ptr<std::atomic<std::int64_t>> time_ =
        std::make_shared<std::atomic<std::int64_t>>(std::chrono::nanoseconds(std::chrono::hours(1)).count());
};

}  // namespace norvane
