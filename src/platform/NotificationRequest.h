#pragma once

#include <chrono>
#include <string>

#include "platform/NotificationContent.h"

namespace norvane {

// A notification that is shown once, `timeInterval` after it was added.
struct NotificationRequest {
    std::string identifier;
    NotificationContent content;
    std::chrono::nanoseconds timeInterval{0};

    bool operator==(const NotificationRequest&) const = default;
};

}  // namespace norvane
