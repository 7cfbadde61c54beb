#pragma once

#include "platform/Task.h"

namespace norvane {

// Where one source that may be slow is read, apart from all others, so that one that never answers takes
// nothing else with it. Used by the sampler's queue only.
class Lane {
 public:
    // Destroying a lane never waits: what is running may go on, what is waiting is dropped.
    virtual ~Lane() = default;

    // Runs the task soon, after the one that is running. False, and nothing will run, where one is waiting
    // already or no thread is to be had. The task shares or owns all that it uses, since it may outlive
    // everything. It must not throw.
    virtual bool post(Task task) = 0;
};

}  // namespace norvane
