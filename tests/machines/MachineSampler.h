#pragma once

#include "platform/linux/LinuxKernel.h"
#include "platform/scripted/ScriptedMachine.h"
#include "telemetry/PerformanceSampler.h"

namespace norvane {

// The sampler on a captured machine's files, in virtual time: the kernel's ports answer from the files, all
// others are scripted.
class MachineSampler {
 public:
    explicit MachineSampler(LinuxKernel& kernel) : kernel_(kernel) { sampler_->start(); }

    // Runs the first tick, hidden, and then the one of the opening. The files stand still, so what is counted
    // in differences is 0.
    void openDashboard() {
        rest_.settle();
        sampler_->setUIVisible(true);
        rest_.settle();
    }
    // Lets a second pass.
    void tick() { rest_.advance(std::chrono::seconds(1)); }

    // The last one; there has to be one.
    const SystemSnapshot& snapshot() { return *(snapshot_ = sampler_->snapshot().get()); }
    ScriptedMachine& rest() { return rest_; }

    // What the sampler is given, for whatever else is to be made of this machine.
    Platform platform() {
        Platform scripted = rest_.platform();
        return {.wallClock = scripted.wallClock,
                .monotonicClock = scripted.monotonicClock,
                .dispatch = scripted.dispatch,
                .hostPort = kernel_.hostPort(),
                .sysctl = kernel_.sysctl(),
                .processInfo = kernel_.processInfo(),
                .registry = kernel_.registry(),
                .powerSources = kernel_.powerSources(),
                .fileManager = kernel_.fileManager(),
                .userNotificationCenter = scripted.userNotificationCenter,
                .standardOutput = scripted.standardOutput,
                .loginItem = scripted.loginItem,
                .workspace = scripted.workspace,
                .mainBundle = scripted.mainBundle,
                .userDefaults = scripted.userDefaults,
                .uuidSource = scripted.uuidSource,
                .textRuler = scripted.textRuler,
                .appearance = scripted.appearance,
                .windowServer = scripted.windowServer,
                .application = scripted.application};
    }

    PreferencesStore& preferences() { return preferences_; }
    const std::shared_ptr<PerformanceSampler>& sampler() const { return sampler_; }

 private:
    LinuxKernel& kernel_;
    ScriptedMachine rest_;
    PreferencesStore preferences_{rest_.userDefaults};
    std::shared_ptr<PerformanceSampler> sampler_ = PerformanceSampler::create(platform(), preferences_);
    PerformanceSampler::SnapshotPointer snapshot_;
};

}  // namespace norvane
