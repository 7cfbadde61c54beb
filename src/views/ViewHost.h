#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/MonotonicInstant.h"
#include "views/Animation.h"

namespace norvane {

class StateCell;

// What a tree of nodes is hosted by, as its nodes see it. Main thread only.
class ViewHost {
 public:
    virtual ~ViewHost() = default;

    // Runs a change of state; what follows from it moves by the animation, or is in its place at once. What
    // has been changed before under another animation, and not been evaluated yet, is evaluated first: each
    // change moves by its own.
    virtual void perform(const std::optional<Animation>& animation, const std::function<void()>& changes) = 0;
    // The component that owns the cell has to be evaluated again. To be called by a running change.
    virtual void invalidate(const std::shared_ptr<StateCell>& cell) = 0;
    // The same tree has another picture.
    virtual void repaint() = 0;
    // Runs it in a later turn of the main queue; where the tree is off the screen by then, when it is shown
    // again.
    virtual void later(std::function<void()> task) = 0;
    virtual MonotonicInstant now() const = 0;
    // Everything is in its place at once, and nothing moves by itself.
    virtual bool reducesMotion() const = 0;
};

}  // namespace norvane
