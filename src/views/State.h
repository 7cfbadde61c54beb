#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "views/StateCell.h"
#include "views/ViewHost.h"

namespace norvane {

template <typename Value>
class WeakState;

// A component's own state, as its body and its handlers reach it. Copies reach the same state, which can be
// read for as long as one of them lives: a handler that was due may run after its component has left the
// screen's tree. Changing it then does nothing. The value itself keeps no copy, or both would live for ever:
// it, and whatever outlives the screen, has a `WeakState`. Main thread only.
template <typename Value>
class State {
 public:
    struct Cell final : StateCell {
        explicit Cell(Value initial) : value(std::move(initial)) {}
        Value value;
    };

    explicit State(std::shared_ptr<Cell> cell) : cell_(std::move(cell)) {}

    // The value of now, or, where the component has left, its last one.
    const Value& operator*() const { return cell_->value; }
    const Value* operator->() const { return &cell_->value; }

    // Changes it, and has the body evaluated before the next picture.
    void change(const std::function<void(Value&)>& changes) const { perform(std::nullopt, changes); }
    // The same, and what follows from it moves.
    void animate(const Animation& animation, const std::function<void(Value&)>& changes) const {
        perform(animation, changes);
    }
    // Runs it in a later turn of the main queue, on the screen, if the component is still there.
    void later(std::function<void()> task) const {
        if (cell_->host == nullptr) return;
        cell_->host->later([cell = cell_, task = std::move(task)] {
            if (cell->host != nullptr) task();
        });
    }

 private:
    friend class WeakState<Value>;

    void perform(const std::optional<Animation>& animation,
                 const std::function<void(Value&)>& changes) const {
        // The component may leave meanwhile, and the handler that this handle is kept by with it.
        const auto cell = cell_;
        if (cell->host == nullptr) return;
        cell->host->perform(animation, [&] {
            changes(cell->value);
            if (cell->host != nullptr) cell->host->invalidate(cell);
        });
    }

    std::shared_ptr<Cell> cell_;
};

}  // namespace norvane
