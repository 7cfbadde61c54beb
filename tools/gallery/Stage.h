#pragma once

#include "platform/linux/PangoTextRuler.h"
#include "platform/scripted/ScriptedMachine.h"

namespace norvane {

// A machine in virtual time whose texts are measured as they are painted.
class Stage {
 public:
    // The layouts outlive the stage.
    Stage(TextLayouts& layouts, bool isDark);
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    Platform platform();

    ScriptedMachine machine;

 private:
    PangoTextRuler ruler_;
};

}  // namespace norvane
