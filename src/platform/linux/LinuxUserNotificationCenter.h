#pragma once

#include <string>

#include "platform/MainQueue.h"
#include "platform/UserNotificationCenter.h"

namespace norvane {

// The desktop's notification server ("Desktop Notifications Specification", org.freedesktop.Notifications).
// Every message to the bus is asynchronous.
class LinuxUserNotificationCenter final : public UserNotificationCenter {
 public:
    // Main thread, the one that runs GLib's default main context. The address is D-Bus' own kind; an empty
    // one stands for no bus.
    LinuxUserNotificationCenter(MainQueue& mainQueue, std::string busAddress);

    void add(NotificationRequest request,
             std::function<void(std::optional<std::string> error)> completion) override;
    void requestAuthorization(std::function<void(bool isGranted)> completion) override;
    void authorizationStatus(std::function<void(NotificationAuthorization)> completion) override;

 private:
    MainQueue& mainQueue_;
    std::string busAddress_;
};

}  // namespace norvane
