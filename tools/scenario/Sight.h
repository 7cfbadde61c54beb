#pragma once

#include "platform/scripted/ScriptedMachine.h"
#include "scenario/Explanations.h"
#include "shell/NorvaneApp.h"

namespace norvane {

// What there is to see at a moment of a scenario: the machine, and the program on it, null while it does not
// run.
struct Sight {
    ScriptedMachine& machine;
    NorvaneApp* app;
    // Likewise.
    const Explanations* explanations;

    // Null while the program does not run.
    const PerformanceSampler* sampler() const {
        return app != nullptr ? &app->delegate().statusBarController()->sampler() : nullptr;
    }
};

}  // namespace norvane
