#pragma once

#include "platform/linux/Lane.h"

namespace norvane {

// Runs what is posted at once, on the caller's thread: for tests and for tools that want an answer.
class InlineLane final : public Lane {
 public:
    bool post(Task task) override {
        task();
        return true;
    }
};

}  // namespace norvane
