#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "platform/UserNotificationCenter.h"

namespace norvane {

// Tells of every notification that is handed in, whatever becomes of it.
class WatchedNotifications final : public UserNotificationCenter {
 public:
    explicit WatchedNotifications(UserNotificationCenter& center) : center_(center) {}

    void add(NotificationRequest request,
             std::function<void(std::optional<std::string> error)> completion) override {
        if (onAdd) onAdd(request.content.title);
        center_.add(std::move(request), std::move(completion));
    }
    void requestAuthorization(std::function<void(bool isGranted)> completion) override {
        center_.requestAuthorization(std::move(completion));
    }
    void authorizationStatus(std::function<void(NotificationAuthorization)> completion) override {
        center_.authorizationStatus(std::move(completion));
    }

    std::function<void(const std::string& title)> onAdd;

 private:
    UserNotificationCenter& center_;
};

}  // namespace norvane
