#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/linux/AccessibleSurfaces.h"
#include "platform/linux/AtspiApplication.h"
#include "platform/linux/BusConnection.h"
#include "platform/MainQueue.h"
#include "platform/MonotonicClock.h"

namespace norvane {

// Tells assistive technologies of our surfaces while the desktop says that there are any (`org.a11y.Status`,
// IsEnabled): then there is a connection to the accessibility bus and the application on it. Otherwise there
// is neither, and nothing runs. Nothing is started for it, and nothing waits. Main thread only.
class LinuxAccessibility {
 public:
    // All outlive it. The scale is the screen's, in pixels for a point.
    LinuxAccessibility(BusConnection& sessionBus, MainQueue& mainQueue, const MonotonicClock& clock,
                       AccessibleSurfaces& surfaces, std::function<double()> scale);
    LinuxAccessibility(const LinuxAccessibility&) = delete;
    LinuxAccessibility& operator=(const LinuxAccessibility&) = delete;

    // Whether it is being told.
    bool isOn() const { return application_ != nullptr; }

 private:
    void ask();
    void changed(GVariant* parameters);
    void know(bool isEnabled);
    void askForBus();
    void open(const std::string& address);
    void close();

    BusConnection& sessionBus_;
    MainQueue& mainQueue_;
    const MonotonicClock& clock_;
    AccessibleSurfaces& surfaces_;
    const std::function<double()> scale_;

    std::unique_ptr<BusConnection> bus_;
    std::unique_ptr<AtspiApplication> application_;

    Cancellation owner_;
    Cancellation changes_;
    Cancellation connection_;
    Cancellation question_;
    Cancellation addressQuestion_;
};

}  // namespace norvane
