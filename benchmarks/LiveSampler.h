#pragma once

#include <memory>

#include "ImmediateDispatch.h"
#include "platform/linux/LinuxKernel.h"
#include "platform/linux/LinuxWallClock.h"
#include "platform/scripted/ScriptedMachine.h"
#include "telemetry/PerformanceSampler.h"

namespace norvane {

// The program's sampler on the machine that this runs on, or on a captured one, reading it as the program
// does; only what it hands over to other threads stays on this one.
class LiveSampler {
 public:
    // While the dashboard is visible, each tick is a full one. Ticks until everything that is kept from tick
    // to tick is there: descriptors, buffers, a whole history.
    explicit LiveSampler(bool isDashboardVisible, const RootFolder& root = RootFolder(""),
                         const SystemCalls& calls = SystemCalls::real(),
                         const LinuxKernel::Lanes& lanes = LinuxKernel::Lanes::threads());

    void tick() { dispatch_.fire(); }
    // Publishes what the tick found. Once after each tick.
    void publish() { dispatch_.runMainQueue(); }

 private:
    Platform platform();

    ScriptedMachine rest_;  // the ports that a tick never asks
    ImmediateDispatch dispatch_{rest_.dispatch};
    LinuxWallClock wallClock_;
    LinuxKernel kernel_;
    PreferencesStore preferences_{rest_.userDefaults};
    std::shared_ptr<PerformanceSampler> sampler_ = PerformanceSampler::create(platform(), preferences_);
};

}  // namespace norvane
