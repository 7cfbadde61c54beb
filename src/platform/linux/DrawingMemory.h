#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "platform/linux/TextLayouts.h"
#include "platform/MainQueue.h"
#include "platform/Observers.h"

namespace norvane {

// What is kept to draw with (set texts, masks, pictures) is worth its memory while a popover is on the
// screen, and for as long after that as somebody may open it again at once. Then it is given back to the
// system; it is made anew as it is needed. Main thread only.
class DrawingMemory {
 public:
    static constexpr std::chrono::nanoseconds kPatience = std::chrono::seconds(10);

    // Both outlive it.
    DrawingMemory(TextLayouts& layouts, MainQueue& mainQueue) : layouts_(layouts), mainQueue_(mainQueue) {}
    DrawingMemory(const DrawingMemory&) = delete;
    DrawingMemory& operator=(const DrawingMemory&) = delete;

    // A popover is on the screen until the returned value goes away.
    [[nodiscard]] Cancellation popoverShown();
    // Told when everything is to go.
    [[nodiscard]] Cancellation onDrop(std::function<void()> observer) {
        return dropped_.add(std::move(observer));
    }

 private:
    void drop();

    TextLayouts& layouts_;
    MainQueue& mainQueue_;
    Observers<> dropped_;
    std::shared_ptr<int> shown_ = std::make_shared<int>(0);
    Cancellation drop_;
};

}  // namespace norvane
