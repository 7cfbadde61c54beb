#pragma once

#include <functional>

#include "platform/PopoverWindowObserver.h"

namespace norvane {

// Counts what a popover's window tells, and does then what it was told to do.
class RecordingObserver final : public PopoverWindowObserver {
 public:
    int pressesOutside = 0;
    int focusLosses = 0;
    int escapes = 0;
    std::function<void()> then;

    void windowPressedOutside() override { tell(pressesOutside); }
    void windowLostFocus() override { tell(focusLosses); }
    void windowEscapePressed() override { tell(escapes); }

 private:
    void tell(int& count) {
        ++count;
        const auto next = then;
        if (next) next();
    }
};

}  // namespace norvane
