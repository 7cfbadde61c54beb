#pragma once

#include <chrono>
#include <utility>
#include <vector>

#include "platform/BackgroundQueue.h"

namespace norvane {

// A queue that runs its tasks when the test says so: a disk that does not answer until then.
class HeldQueue final : public BackgroundQueue {
 public:
    void async(Task task) override { tasks.push_back(std::move(task)); }
    void asyncAfter(std::chrono::nanoseconds, Task task) override { tasks.push_back(std::move(task)); }

    void runAll() {
        for (Task& task : std::exchange(tasks, {}))
            task();
    }

    std::vector<Task> tasks;
};

}  // namespace norvane
