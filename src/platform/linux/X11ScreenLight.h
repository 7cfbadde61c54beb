#pragma once

#include <memory>
#include <optional>

#include "platform/linux/ScreenLight.h"
#include "platform/linux/X11Connection.h"
#include "platform/MainQueue.h"
#include "platform/MonotonicClock.h"
#include "platform/Observers.h"

namespace norvane {

// The screen is dark while the display is powered down or a screen saver is in front. The server tells of the
// latter; the power it has to be asked for, which happens without waiting, while frames run or while somebody
// waits for the light, and not more often than every `kPatience`; what paints seldom has it asked for seldom.
class X11ScreenLight final : public ScreenLight {
 public:
    static constexpr std::chrono::nanoseconds kPatience = std::chrono::seconds(2);
    // For what paints seldom: each question wakes the process once more.
    static constexpr std::chrono::nanoseconds kLongPatience = std::chrono::seconds(20);

    // All outlive it.
    X11ScreenLight(X11Connection& connection, const MonotonicClock& clock, MainQueue& mainQueue);
    ~X11ScreenLight() override;
    X11ScreenLight(const X11ScreenLight&) = delete;
    X11ScreenLight& operator=(const X11ScreenLight&) = delete;

    bool isLit() override;
    bool isKnownDark() override;
    [[nodiscard]] Cancellation onLit(std::function<void()> observer) override;

 private:
    void handle(const xcb_generic_event_t& event);
    bool isDark() const { return isPoweredDown_ || isSaverInFront_; }
    void ask(std::chrono::nanoseconds patience);
    void takeAnswer();
    void lookAgainLater();
    void lookAgain();

    X11Connection& connection_;
    const MonotonicClock& clock_;
    MainQueue& mainQueue_;
    std::optional<unsigned> question_;  // the request that has not been answered yet
    std::optional<MonotonicInstant> asked_;
    bool isPoweredDown_ = false;
    bool isSaverInFront_ = false;
    Observers<> lit_;
    std::shared_ptr<int> waiting_ = std::make_shared<int>(0);
    Cancellation look_;
    Cancellation events_;
};

}  // namespace norvane
