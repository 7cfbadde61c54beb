#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/NotificationAuthorization.h"
#include "platform/NotificationRequest.h"

namespace norvane {

// Where notifications are handed in, with sound and alert. Any thread; the calls return at once and never
// throw. A completion is called once, on a thread of the platform's choosing; not at all where the process
// ends first.
class UserNotificationCenter {
 public:
    virtual ~UserNotificationCenter() = default;

    // Completes with a description of the error, valid UTF-8, or without one where the notification was
    // delivered.
    virtual void add(NotificationRequest request,
                     std::function<void(std::optional<std::string> error)> completion) = 0;

    // Asks for leave to show alerts and play sounds. Completes within seconds.
    virtual void requestAuthorization(std::function<void(bool isGranted)> completion) = 0;
    // `getNotificationSettings`, of which nothing but the status is wanted.
    virtual void authorizationStatus(std::function<void(NotificationAuthorization)> completion) = 0;
};

}  // namespace norvane
