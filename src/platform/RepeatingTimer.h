#pragma once

namespace norvane {

// A running repeating timer. Destroying it stops it: a firing already under way on the queue finishes, no
// further one begins. It may be destroyed on any thread, also from within its own task.
class RepeatingTimer {
 public:
    virtual ~RepeatingTimer() = default;
};

}  // namespace norvane
