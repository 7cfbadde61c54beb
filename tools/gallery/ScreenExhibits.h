#pragma once

#include "gallery/Exhibit.h"
#include "gallery/Stage.h"

// Whole screens of the running program.
namespace norvane::gallery {

DisplayList welcome(Stage& stage);
DisplayList settingsWithoutAlerts(Stage& stage);
DisplayList settingsWithAlerts(Stage& stage);
DisplayList info(Stage& stage);

DisplayList processorIdleLaptop(Stage& stage);
DisplayList processorLoadedDesktop(Stage& stage);
DisplayList processorServer(Stage& stage);
DisplayList processorNoSnapshot(Stage& stage);
DisplayList memoryIdleLaptop(Stage& stage);
DisplayList memoryLoadedDesktop(Stage& stage);
DisplayList memoryServer(Stage& stage);
DisplayList memoryNoSnapshot(Stage& stage);

DisplayList storageNothingRemovable(Stage& stage);
DisplayList storageNearlyFull(Stage& stage);
DisplayList storageEjecting(Stage& stage);

DisplayList batteryIdleLaptop(Stage& stage);
DisplayList batteryNearItsEnd(Stage& stage);
DisplayList batteryOnHold(Stage& stage);
DisplayList batteryWorn(Stage& stage);
// A machine that has none.
DisplayList batteryNone(Stage& stage);

DisplayList dashboardQuitPointedAt(Stage& stage);
DisplayList dashboardPodPointedAt(Stage& stage);
DisplayList dashboardChangingPods(Stage& stage);

}  // namespace norvane::gallery
