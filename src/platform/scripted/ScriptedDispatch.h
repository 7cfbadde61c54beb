#pragma once

#include <map>
#include <memory>
#include <string>

#include "platform/Dispatch.h"
#include "platform/scripted/ScriptedLoop.h"

namespace norvane {

// Queues in virtual time. A test may hold each of them back.
class ScriptedDispatch final : public Dispatch {
 public:
    explicit ScriptedDispatch(ScriptedLoop& loop);

    MainQueue& mainQueue() override { return main_; }
    BackgroundQueue& backgroundQueue() override { return background_; }
    std::unique_ptr<SerialQueue> makeSerialQueue(std::string_view label) override;

    // The queues as the loop sees them, to be held and let go.
    ScriptedLoop::Queue& mainLoopQueue() { return *main_.queue; }
    ScriptedLoop::Queue& backgroundLoopQueue() { return *background_.queue; }
    // The serial queue last made under this label; null if there was none.
    ScriptedLoop::Queue* serialLoopQueue(const std::string& label) const;

 private:
    struct Main final : MainQueue {
        explicit Main(ScriptedLoop& owner) : loop(owner), queue(owner.makeQueue()) {}
        void async(Task task) override { loop.enqueue(queue, std::move(task)); }
        Cancellation after(std::chrono::nanoseconds delay, Task task) override;
        ScriptedLoop& loop;
        std::shared_ptr<ScriptedLoop::Queue> queue;
    };
    struct Background final : BackgroundQueue {
        explicit Background(ScriptedLoop& owner) : loop(owner), queue(owner.makeQueue()) {}
        void async(Task task) override { loop.enqueue(queue, std::move(task)); }
        void asyncAfter(std::chrono::nanoseconds delay, Task task) override {
            loop.scheduleOnce(queue, delay, std::move(task));
        }
        ScriptedLoop& loop;
        std::shared_ptr<ScriptedLoop::Queue> queue;
    };

    ScriptedLoop& loop_;
    Main main_;
    Background background_;
    std::map<std::string, std::shared_ptr<ScriptedLoop::Queue>, std::less<>> serial_;
};

}  // namespace norvane
