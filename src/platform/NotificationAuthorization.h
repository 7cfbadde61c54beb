#pragma once

namespace norvane {

// Whether the user, or their desktop, lets notifications through.
enum class NotificationAuthorization : int {
    notDetermined = 0,
    denied = 1,
    authorized = 2,
};

}  // namespace norvane
