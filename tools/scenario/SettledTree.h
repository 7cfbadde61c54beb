#pragma once

#include "platform/AccessibleNode.h"
#include "platform/scripted/ScriptedPopoverWindow.h"

namespace norvane {

// What the window tells once it has come to rest: what fades in is not there for anybody at first. It is at
// rest from then on.
AccessibleNode settledTree(ScriptedPopoverWindow& window, MonotonicInstant now);

}  // namespace norvane
