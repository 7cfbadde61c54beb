#pragma once

#include <functional>

#include "platform/linux/OwnWindows.h"
#include "platform/linux/X11Connection.h"
#include "platform/Observers.h"

namespace norvane {

// Hears of every press of a button or a finger outside of our windows, whoever gets the press itself: raw
// events of XInput 2 come past all grabs, and take nothing away from anybody. The server is asked for them
// only while somebody listens, so that a hidden application sleeps through the clicks of the day. Main thread
// only.
class OutsidePresses {
 public:
    // Both outlive it.
    OutsidePresses(X11Connection& connection, const OwnWindows& ownWindows);

    // Whether presses can be heard of at all.
    bool isAvailable() const { return connection_.input().isPresent; }
    [[nodiscard]] Cancellation onPress(std::function<void()> observer);

 private:
    void select(bool wanted);
    void handle(const xcb_generic_event_t& event);

    X11Connection& connection_;
    const OwnWindows& ownWindows_;
    Observers<> pressed_;
    std::shared_ptr<int> listeners_ = std::make_shared<int>(0);
    Cancellation events_;
};

}  // namespace norvane
