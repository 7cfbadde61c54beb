#include "gallery/Exhibits.h"

#include "gallery/ControlExhibits.h"
#include "gallery/ElementExhibits.h"
#include "gallery/GaugeExhibits.h"
#include "gallery/PictureExhibits.h"
#include "gallery/ScreenExhibits.h"
#include "gallery/TextExhibits.h"

namespace norvane {

std::span<const Exhibit> exhibits() {
    using namespace gallery;
    static constexpr Exhibit kExhibits[] = {
        {"gauges-neon-bars-dim", neonBarsDim},
        {"gauges-neon-bars-bright", neonBarsBright},
        {"gauges-rings-dim", ringsDim},
        {"gauges-rings-bright", ringsBright},
        {"gauges-velocity-bars", velocityBars},
        {"gauges-growing", gaugesGrowing},
        {"gauges-springs-over-the-end", springsOverTheEnd},
        {"controls-switches", switches},
        {"controls-switch-half-way", switchHalfWay},
        {"controls-pickers", pickers},
        {"controls-picker-half-way", pickerHalfWay},
        {"controls-steppers", steppers},
        {"controls-stepper-held", stepperHeld},
        {"controls-buttons", buttons},
        {"controls-button-held", buttonHeld},
        {"controls-link-pointed-at", linkPointedAt},
        {"controls-spinners", spinners},
        {"elements-stacks", stacks},
        {"elements-modifiers", modifiers},
        {"elements-shapes", shapes},
        {"elements-shadows", shadows},
        {"elements-scrolled", scrolled},
        {"elements-transitions-half-way", transitionsHalfWay},
        {"texts-typefaces", typefaces},
        {"texts-paragraphs", paragraphs},
        {"pictures-symbols", symbols},
        {"pictures-images", images},
        {"pictures-inks", inks},
        {"screen-welcome", welcome},
        {"screen-settings-without-alerts", settingsWithoutAlerts},
        {"screen-settings-with-alerts", settingsWithAlerts},
        {"screen-info", info},
        {"screen-processor-idle-laptop", processorIdleLaptop},
        {"screen-processor-loaded-desktop", processorLoadedDesktop},
        {"screen-processor-server", processorServer},
        {"screen-processor-no-snapshot", processorNoSnapshot},
        {"screen-memory-idle-laptop", memoryIdleLaptop},
        {"screen-memory-loaded-desktop", memoryLoadedDesktop},
        {"screen-memory-server", memoryServer},
        {"screen-memory-no-snapshot", memoryNoSnapshot},
        {"screen-storage-nothing-removable", storageNothingRemovable},
        {"screen-storage-nearly-full", storageNearlyFull},
        {"screen-storage-ejecting", storageEjecting},
        {"screen-battery-idle-laptop", batteryIdleLaptop},
        {"screen-battery-near-its-end", batteryNearItsEnd},
        {"screen-battery-on-hold", batteryOnHold},
        {"screen-battery-worn", batteryWorn},
        {"screen-battery-none", batteryNone},
        {"screen-dashboard-quit-pointed-at", dashboardQuitPointedAt},
        {"screen-dashboard-pod-pointed-at", dashboardPodPointedAt},
        {"screen-dashboard-changing-pods", dashboardChangingPods},
    };
    return kExhibits;
}

}  // namespace norvane
