#include "platform/linux/LinuxUserNotificationCenter.h"

#include <utility>

namespace norvane {

LinuxUserNotificationCenter::LinuxUserNotificationCenter(MainQueue& mainQueue, std::string busAddress)
    : mainQueue_(mainQueue), busAddress_(std::move(busAddress)) {}

void LinuxUserNotificationCenter::add(NotificationRequest,
                                      std::function<void(std::optional<std::string> error)> completion) {
    completion("not built yet");
}

void LinuxUserNotificationCenter::requestAuthorization(std::function<void(bool isGranted)> completion) {
    completion(false);
}

void LinuxUserNotificationCenter::authorizationStatus(
    std::function<void(NotificationAuthorization)> completion) {
    completion(NotificationAuthorization::notDetermined);
}

}  // namespace norvane
