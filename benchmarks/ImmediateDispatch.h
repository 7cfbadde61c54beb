#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/Dispatch.h"

namespace norvane {

// Queues for measuring what runs on a serial queue, all on one thread: it runs its tasks at once, and its
// repeating timer fires when it is told to. What reaches the main queue waits there, at no allocation, to be
// run when nothing is measured. One timer at a time.
class ImmediateDispatch final : public Dispatch {
 public:
    // What nobody measures goes to `rest`, which outlives this.
    explicit ImmediateDispatch(Dispatch& rest)
        : background_(rest.backgroundQueue()), main_(rest.mainQueue()) {}

    MainQueue& mainQueue() override { return main_; }
    BackgroundQueue& backgroundQueue() override { return background_; }
    std::unique_ptr<SerialQueue> makeSerialQueue(std::string_view) override {
        return std::make_unique<Serial>(timerTask_);
    }

    // A firing of the timer; there has to be one.
    void fire() { timerTask_(); }
    void runMainQueue() { main_.run(); }

 private:
    struct Timer final : RepeatingTimer {
        explicit Timer(Task& task) : task_(task) {}
        ~Timer() override { task_ = Task(); }
        Task& task_;
    };
    struct Serial final : SerialQueue {
        explicit Serial(Task& timerTask) : timerTask_(timerTask) {}
        void async(Task task) override { task(); }
        std::unique_ptr<RepeatingTimer> every(std::chrono::nanoseconds, Task task) override {
            timerTask_ = std::move(task);
            timerTask_();
            return std::make_unique<Timer>(timerTask_);
        }
        Task& timerTask_;
    };
    struct Main final : MainQueue {
        explicit Main(MainQueue& rest) : rest_(rest) {}
        void async(Task task) override {
            if (count_ == tasks_.size()) std::abort();  // whoever measures runs the queue after each tick
            tasks_[count_++] = std::move(task);
        }
        Cancellation after(std::chrono::nanoseconds delay, Task task) override {
            return rest_.after(delay, std::move(task));
        }
        void run() {
            for (std::size_t i = 0; i < count_; ++i)
                std::exchange(tasks_[i], Task())();
            count_ = 0;
        }
        MainQueue& rest_;
        std::array<Task, 16> tasks_;
        std::size_t count_ = 0;
    };

    BackgroundQueue& background_;
    Main main_;
    Task timerTask_;
};

}  // namespace norvane
