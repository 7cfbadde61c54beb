#pragma once

#include <string>

namespace norvane {

enum class NotificationSound { none, defaultSound };

// What the user is to be told, once.
struct NotificationContent {
    // Plain text, valid UTF-8.
    std::string title;
    std::string body;
    NotificationSound sound = NotificationSound::none;

    bool operator==(const NotificationContent&) const = default;
};

}  // namespace norvane
