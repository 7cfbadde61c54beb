#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "platform/MainQueue.h"

namespace norvane {

// Keeps the status line steady: a new verdict reaches the screen only when it has held for 3 seconds, and one
// that changes again before that restarts the wait. An opening shows the verdict of that moment at once. Main
// thread only.
class SteadyStatusLine {
 public:
    // `onChange` is called after the text on screen became another one by the wait's end. The queue outlives
    // this.
    SteadyStatusLine(MainQueue& mainQueue, std::function<void()> onChange);
    SteadyStatusLine(const SteadyStatusLine&) = delete;
    SteadyStatusLine& operator=(const SteadyStatusLine&) = delete;

    // The dashboard opens: shows `text` at once. What was waited for, or seen, before the closing is
    // forgotten.
    void open(std::string_view text);
    // The verdict as it is at this evaluation. Only a change starts a wait.
    void observe(std::string_view text);

    // What is on screen; empty before the first opening.
    const std::string& stableStatusText() const { return stableStatusText_; }

 private:
    void settle();

    MainQueue& mainQueue_;
    std::function<void()> onChange_;
    std::string stableStatusText_;
    std::string lastObserved_;
    Cancellation debounceTask_;
};

}  // namespace norvane
