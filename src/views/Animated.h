#pragma once

#include <cstddef>
#include <memory>
#include <optional>

#include "platform/MonotonicInstant.h"
#include "views/Animation.h"
#include "views/Interpolation.h"

namespace norvane {

// A value that is on its way, or stands. What it is at a time is a function of that time alone: nothing has
// to be called for it to move.
template <typename T>
class Animated {
 public:
    Animated() : Animated(T{}) {}
    explicit Animated(const T& value) : target_(value) {}

    const T& target() const { return target_; }

    // Where it stands at `now`. A time before it set out counts as the moment when it did.
    T valueAt(MonotonicInstant now) const {
        if (!isMovingAt(now)) return target_;
        return Numbers::value(numbersAt(now));
    }
    bool isMovingAt(MonotonicInstant now) const {
        return movement_ && !movement_->animation.isOverAfter(now - movement_->start);
    }
    // How it moves at this time; none where it stands.
    std::optional<Animation> animationAt(MonotonicInstant now) const {
        return isMovingAt(now) ? std::optional(movement_->animation) : std::nullopt;
    }

    // To another target, from where it stands at `now`, with the speed that it has.
    void animateTo(const T& target, const Animation& animation, MonotonicInstant now) {
        const auto from = numbersAt(now);
        const auto velocity = velocityAt(now);
        target_ = target;
        movement_ = animation.isOverAfter({})
                        ? nullptr
                        : std::make_shared<const Movement>(
                              Movement{difference(from, Numbers::numbers(target)), velocity, animation, now});
    }

    // To another target at once. A movement that is going on goes on, moved by as much.
    void moveTo(const T& target, MonotonicInstant now) {
        if (!isMovingAt(now)) movement_.reset();
        target_ = target;
    }

    // There, at rest.
    void jumpTo(const T& target) {
        target_ = target;
        movement_.reset();
    }

 private:
    using Numbers = Interpolation<T>;
    using Array = typename Numbers::Numbers;
    struct Movement {
        Array way{};  // from the target back to the start
        Array velocity{};
        Animation animation;
        MonotonicInstant start;
    };

    static Array difference(const Array& a, const Array& b) {
        Array result{};
        for (std::size_t i = 0; i < result.size(); ++i)
            result[i] = a[i] - b[i];
        return result;
    }
    Array numbersAt(MonotonicInstant now) const {
        Array numbers = Numbers::numbers(target_);
        if (!isMovingAt(now)) return numbers;
        const Animation::Rest rest = movement_->animation.restAfter(now - movement_->start);
        for (std::size_t i = 0; i < numbers.size(); ++i)
            numbers[i] += movement_->way[i] * rest.way + movement_->velocity[i] * rest.drift;
        return numbers;
    }
    // A second.
    Array velocityAt(MonotonicInstant now) const {
        constexpr std::chrono::milliseconds kMoment{1};
        if (!isMovingAt(now) || movement_->animation.repeats) return {};
        Array change = difference(numbersAt(now + kMoment), numbersAt(now));
        for (double& component : change)
            component *= 1000;
        return change;
    }

    T target_;
    std::shared_ptr<const Movement> movement_;  // null where it stands
};

}  // namespace norvane
