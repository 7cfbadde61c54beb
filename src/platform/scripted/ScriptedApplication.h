#pragma once

#include "platform/Application.h"

namespace norvane {

// Remembers what was asked of it.
class ScriptedApplication final : public Application {
 public:
    void activateIgnoringOtherApps() override { ++activations; }
    void terminate() override { terminated = true; }

    int activations = 0;
    bool terminated = false;
};

}  // namespace norvane
