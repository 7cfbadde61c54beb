#include "platform/scripted/ScriptedDispatch.h"

#include <utility>

namespace norvane {
namespace {

class ScriptedTimer final : public RepeatingTimer {
 public:
    explicit ScriptedTimer(std::shared_ptr<ScriptedLoop::Timer> timer) : timer_(std::move(timer)) {}

 private:
    std::shared_ptr<ScriptedLoop::Timer> timer_;
};

class ScriptedSerialQueue final : public SerialQueue {
 public:
    ScriptedSerialQueue(ScriptedLoop& loop, std::shared_ptr<ScriptedLoop::Queue> queue)
        : loop_(loop), queue_(std::move(queue)) {}
    ~ScriptedSerialQueue() override { queue_->close(); }

    void async(Task task) override { loop_.enqueue(queue_, std::move(task)); }
    std::unique_ptr<RepeatingTimer> every(std::chrono::nanoseconds interval, Task task) override {
        return std::make_unique<ScriptedTimer>(
            loop_.schedule(queue_, std::chrono::nanoseconds::zero(), interval, std::move(task)));
    }

 private:
    ScriptedLoop& loop_;
    std::shared_ptr<ScriptedLoop::Queue> queue_;
};

}  // namespace

ScriptedDispatch::ScriptedDispatch(ScriptedLoop& loop) : loop_(loop), main_(loop), background_(loop) {}

Cancellation ScriptedDispatch::Main::after(std::chrono::nanoseconds delay, Task task) {
    auto timer = loop.schedule(queue, delay, std::nullopt, std::move(task));
    return Cancellation([timer]() mutable { timer.reset(); });
}

std::unique_ptr<SerialQueue> ScriptedDispatch::makeSerialQueue(std::string_view label) {
    auto queue = loop_.makeQueue();
    serial_[std::string(label)] = queue;
    return std::make_unique<ScriptedSerialQueue>(loop_, std::move(queue));
}

ScriptedLoop::Queue* ScriptedDispatch::serialLoopQueue(const std::string& label) const {
    const auto found = serial_.find(label);
    return found == serial_.end() ? nullptr : found->second.get();
}

}  // namespace norvane
