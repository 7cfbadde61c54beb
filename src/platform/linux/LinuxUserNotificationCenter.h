#pragma once

#include <chrono>
#include <memory>

#include "platform/linux/BusConnection.h"
#include "platform/MainQueue.h"
#include "platform/UserNotificationCenter.h"

namespace norvane {

// The desktop's notification server ("Desktop Notifications", freedesktop.org;
// org.freedesktop.Notifications). Every message to the bus is asynchronous; completions are called on the
// main thread. A plain desktop asks nobody for leave: whoever has a server has leave.
class LinuxUserNotificationCenter final : public UserNotificationCenter {
 public:
    struct Limits {
        // For a server to take a notification.
        std::chrono::milliseconds delivery = BusConnection::kUsualLimit;
        // For the answer to somebody who has just pressed a switch.
        std::chrono::milliseconds authorization = std::chrono::seconds(2);
    };

    // Main thread. The session bus; it and the queue outlive this.
    LinuxUserNotificationCenter(MainQueue& mainQueue, BusConnection& sessionBus);
    LinuxUserNotificationCenter(MainQueue& mainQueue, BusConnection& sessionBus, const Limits& limits);
    ~LinuxUserNotificationCenter() override;
    LinuxUserNotificationCenter(const LinuxUserNotificationCenter&) = delete;
    LinuxUserNotificationCenter& operator=(const LinuxUserNotificationCenter&) = delete;

    void add(NotificationRequest request,
             std::function<void(std::optional<std::string> error)> completion) override;
    void requestAuthorization(std::function<void(bool isGranted)> completion) override;
    void authorizationStatus(std::function<void(NotificationAuthorization)> completion) override;

 private:
    class Server;

    MainQueue& mainQueue_;
    std::shared_ptr<Server> server_;
};

}  // namespace norvane
