#pragma once

#include <memory>
#include <string>

#include "platform/linux/Lane.h"

namespace norvane {

// A lane with a thread of its own, which is started by the first task and sleeps between tasks.
class ThreadLane final : public Lane {
 public:
    // The name is for people: debuggers, thread lists. The kernel keeps 15 bytes of it.
    explicit ThreadLane(std::string name);
    ~ThreadLane() override;

    bool post(Task task) override;

 private:
    struct State;
    std::string name_;
    bool started_ = false;
    std::shared_ptr<State> state_;  // shared with the thread, which may be the last to use it
};

}  // namespace norvane
