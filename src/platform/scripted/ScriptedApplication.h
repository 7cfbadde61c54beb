#pragma once

#include <functional>

#include "platform/Application.h"
#include "platform/MainQueue.h"
#include "platform/Observers.h"

namespace norvane {

// Remembers what was asked of it.
class ScriptedApplication final : public Application {
 public:
    // The queue outlives the application.
    explicit ScriptedApplication(MainQueue& mainQueue) : mainQueue_(mainQueue) {}

    void setActivationPolicy(ActivationPolicy policy) override { activationPolicy = policy; }
    void activateIgnoringOtherApps() override {
        ++activations;
        mainQueue_.async([this] { didBecomeActive_.tell(); });
    }
    Cancellation onDidBecomeActive(std::function<void()> observer) override {
        return didBecomeActive_.add(std::move(observer));
    }
    Cancellation onReopen(std::function<void()> observer) override {
        return reopened_.add(std::move(observer));
    }
    void terminate() override { terminated = true; }

    // The user starts the application a second time.
    void reopen() const { reopened_.tell(); }

    ActivationPolicy activationPolicy = ActivationPolicy::regular;
    int activations = 0;
    bool terminated = false;

 private:
    MainQueue& mainQueue_;
    Observers<> didBecomeActive_;
    Observers<> reopened_;
};

}  // namespace norvane
