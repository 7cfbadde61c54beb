#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "platform/linux/AccessibleSurfaces.h"
#include "platform/linux/AtspiAnswers.h"
#include "platform/linux/AtspiTree.h"
#include "platform/linux/BusConnection.h"
#include "platform/linux/SpacedTask.h"
#include "platform/MainQueue.h"
#include "platform/MonotonicClock.h"

namespace norvane {

// Our application on the accessibility bus ("AT-SPI2", freedesktop.org): assistive technologies read there
// what our surfaces tell, hear of what changes, and act on it. It joins the registry's desktop, and again
// that of each registry that comes later. When this goes away, so does the application. Main thread only.
class AtspiApplication {
 public:
    // Changes are told of together, so that what moves is not told of step by step.
    static constexpr std::chrono::nanoseconds kPause = std::chrono::milliseconds(100);

    // All outlive it. The scale is the screen's, in pixels for a point.
    AtspiApplication(BusConnection& accessibilityBus, MainQueue& mainQueue, const MonotonicClock& clock,
                     AccessibleSurfaces& surfaces, std::function<double()> scale);
    AtspiApplication(const AtspiApplication&) = delete;
    AtspiApplication& operator=(const AtspiApplication&) = delete;

 private:
    bool look();
    void tell(const AtspiEvent& event);
    void join();
    bool act(AtspiId id, std::size_t action);
    bool focus(AtspiId id);
    bool setValue(AtspiId id, double value);
    void later(std::function<void()> deed);

    BusConnection& bus_;
    MainQueue& mainQueue_;
    AccessibleSurfaces& surfaces_;
    const std::function<double()> scale_;
    AtspiTree tree_;
    AtspiAnswers answers_;
    SpacedTask looking_;
    std::shared_ptr<const int> life_ = std::make_shared<const int>(0);

    Cancellation family_;
    Cancellation cache_;
    Cancellation changes_;
    Cancellation connection_;
    Cancellation registry_;
    bool isJoined_ = false;
    Cancellation joining_;  // while it is asked for
};

}  // namespace norvane
