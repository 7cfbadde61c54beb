#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/BackgroundQueue.h"
#include "platform/scripted/ScriptedAnswer.h"
#include "platform/UserNotificationCenter.h"

namespace norvane {

// A notification server that takes everything, until told otherwise. Completions come later, from a
// background task, a notification's when its time has come.
class ScriptedUserNotificationCenter final : public UserNotificationCenter {
 public:
    explicit ScriptedUserNotificationCenter(BackgroundQueue& queue) : queue_(queue) {}

    void add(NotificationRequest request,
             std::function<void(std::optional<std::string> error)> completion) override {
        added.push_back(request);
        queue_.asyncAfter(request.timeInterval,
                          [this, content = std::make_shared<NotificationContent>(request.content),
                           done = std::make_shared<decltype(completion)>(std::move(completion))] {
                              const auto failure = error.ask();
                              const bool isDenied = status.ask() == NotificationAuthorization::denied;
                              if (!failure && !isDenied) shown.push_back(*content);
                              (*done)(failure);
                          });
    }
    void requestAuthorization(std::function<void(bool isGranted)> completion) override {
        queue_.async([this, done = std::move(completion)] { done(isGranted.ask()); });
    }
    void authorizationStatus(std::function<void(NotificationAuthorization)> completion) override {
        queue_.async([this, done = std::move(completion)] { done(status.ask()); });
    }

    // What comes of the next notification whose time has come. A refused one is lost without a word.
    ScriptedAnswer<std::optional<std::string>> error{std::nullopt};
    ScriptedAnswer<bool> isGranted{true};
    ScriptedAnswer<NotificationAuthorization> status{NotificationAuthorization::authorized};

    // Everything that was handed in, and what the user has been shown of it.
    std::vector<NotificationRequest> added;
    std::vector<NotificationContent> shown;

 private:
    BackgroundQueue& queue_;
};

}  // namespace norvane
