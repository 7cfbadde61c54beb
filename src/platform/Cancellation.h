#pragma once

#include <functional>
#include <utility>

namespace norvane {

// Keeps something alive that can be ended: a subscription, a delayed task. It ends when `cancel` is called or
// the value goes away, whichever comes first; ending it twice, or after it ended by itself, does nothing.
class Cancellation {
 public:
    Cancellation() = default;
    explicit Cancellation(std::function<void()> cancel) : cancel_(std::move(cancel)) {}
    Cancellation(Cancellation&& other) noexcept : cancel_(std::exchange(other.cancel_, nullptr)) {}
    Cancellation& operator=(Cancellation&& other) noexcept {
        if (this != &other) {
            cancel();
            cancel_ = std::exchange(other.cancel_, nullptr);
        }
        return *this;
    }
    ~Cancellation() { cancel(); }

    void cancel() {
        if (const auto end = std::exchange(cancel_, nullptr)) end();
    }
    // Whether there is still something that `cancel` would try to end.
    explicit operator bool() const { return cancel_ != nullptr; }

 private:
    std::function<void()> cancel_;
};

}  // namespace norvane
