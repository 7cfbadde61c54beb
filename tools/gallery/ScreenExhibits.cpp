#include "gallery/ScreenExhibits.h"

#include <chrono>
#include <stdexcept>
#include <string>
#include <string_view>

#include "gallery/ShownMachines.h"
#include "platform/scripted/ScriptedPopoverWindow.h"
#include "shell/NorvaneApp.h"

namespace norvane::gallery {
namespace {

using namespace std::chrono_literals;

// The program, seen and used as by a user.
class Program {
 public:
    enum class Start { withWelcome, afterWelcome };

    explicit Program(Stage& stage, Start start = Start::afterWelcome)
        : stage_(stage), app_(stage.platform()) {
        stage.machine.mainBundle.information =
            PropertyDictionary{{std::string(MainBundle::kShortVersion), "1.0"}};
        stage.machine.userDefaults.setObject("hasSeenWelcome", start == Start::afterWelcome);
        // The pods are chosen by hand, the same on every machine.
        stage.machine.userDefaults.setObject("isSmartAutoExpandEnabled", false);
        stage.machine.windowServer.runsFrames = true;
        app_.launch();
        pass(1s);
    }

    NorvaneApp& app() { return app_; }
    Program& pass(std::chrono::milliseconds time) {
        stage_.machine.advance(time);
        return *this;
    }
    Program& openDashboard() {
        stage_.machine.windowServer.clickStatusItem();
        return pass(1s);
    }
    Program& press(std::string_view name) {
        const AccessibleNode node = find(window().content().accessibleTree(), name);
        if (node.key.empty() || !window().content().perform(node.key, "press")) {
            throw std::runtime_error("nothing can be pressed that is called " + std::string(name));
        }
        return pass(0ms);
    }
    Program& pointAt(std::string_view name) {
        const AccessibleNode node = find(window().content().accessibleTree(), name);
        if (node.key.empty()) throw std::runtime_error("nothing is called " + std::string(name));
        window().content().pointer({PointerEvent::Kind::move, {node.frame.midX(), node.frame.midY()}});
        return pass(1s);
    }
    DisplayList picture() { return window().picture(); }

 private:
    ScriptedPopoverWindow& window() {
        const auto& windows = stage_.machine.windowServer.windows();
        if (windows.empty()) throw std::runtime_error("no window is open");
        return *windows.back();
    }
    static AccessibleNode find(const AccessibleNode& tree, std::string_view name) {
        if (tree.name == name) return tree;
        for (const AccessibleNode& child : tree.children) {
            AccessibleNode found = find(child, name);
            if (!found.key.empty()) return found;
        }
        return {};
    }

    Stage& stage_;
    NorvaneApp app_;
};

DisplayList settings(Stage& stage, bool hasAlerts) {
    Program program(stage);
    for (const char* alert :
         {"sustainedLoadNotificationsEnabled", "storageAlertEnabled", "batteryAlertEnabled"}) {
        stage.machine.userDefaults.setObject(alert, hasAlerts);
    }
    return program.openDashboard().press("Settings").pass(1s).picture();
}

// The dashboard a minute after it was opened, so that the graph is full.
DisplayList panel(Stage& stage, std::string_view pod, void (*make)(ScriptedMachine&), const Load& load) {
    make(stage.machine);
    Program program(stage);
    program.openDashboard();
    if (pod != "CPU") program.press(pod);
    liveAMinute(stage.machine, load);
    return program.pass(900ms).picture();
}

DisplayList storagePanel(Stage& stage, void (*make)(ScriptedMachine&)) {
    return panel(stage, "Disk", make, kIdle);
}
DisplayList batteryPanel(Stage& stage, void (*make)(ScriptedMachine&)) {
    return panel(stage, "Impact", make, kIdle);
}

// The very first opening, on a machine that has not answered yet.
DisplayList panelWithoutSnapshot(Stage& stage, std::string_view pod) {
    Program program(stage);
    if (ScriptedLoop::Queue* ticks = stage.machine.dispatch.serialLoopQueue("Norvane.sampler")) ticks->hold();
    program.openDashboard();
    if (pod != "CPU") program.press(pod);
    return program.pass(2s).picture();
}

}  // namespace

DisplayList welcome(Stage& stage) {
    return Program(stage, Program::Start::withWelcome).picture();
}
DisplayList settingsWithoutAlerts(Stage& stage) {
    return settings(stage, false);
}
DisplayList settingsWithAlerts(Stage& stage) {
    return settings(stage, true);
}
DisplayList info(Stage& stage) {
    return Program(stage).openDashboard().press("Info").pass(1s).picture();
}

DisplayList processorIdleLaptop(Stage& stage) {
    return panel(stage, "CPU", makeIdleLaptop, kIdle);
}
DisplayList processorLoadedDesktop(Stage& stage) {
    return panel(stage, "CPU", makeLoadedDesktop, kCompiling);
}
DisplayList processorServer(Stage& stage) {
    return panel(stage, "CPU", makeServer, kServing);
}
DisplayList processorNoSnapshot(Stage& stage) {
    return panelWithoutSnapshot(stage, "CPU");
}
DisplayList memoryIdleLaptop(Stage& stage) {
    return panel(stage, "RAM", makeIdleLaptop, kIdle);
}
DisplayList memoryLoadedDesktop(Stage& stage) {
    return panel(stage, "RAM", makeLoadedDesktop, kCompiling);
}
DisplayList memoryServer(Stage& stage) {
    return panel(stage, "RAM", makeServer, kServing);
}
DisplayList memoryNoSnapshot(Stage& stage) {
    return panelWithoutSnapshot(stage, "RAM");
}

DisplayList storageNothingRemovable(Stage& stage) {
    return storagePanel(stage, makeServer);
}
DisplayList storageNearlyFull(Stage& stage) {
    return storagePanel(stage, makeLaptopWithFullDisk);
}
DisplayList storageEjecting(Stage& stage) {
    makeLaptopWithSticks(stage.machine);
    return Program(stage).openDashboard().press("Disk").pass(5s).press("Eject BACKUP").pass(5s).picture();
}
DisplayList batteryIdleLaptop(Stage& stage) {
    return batteryPanel(stage, makeIdleLaptop);
}
DisplayList batteryNearItsEnd(Stage& stage) {
    return batteryPanel(stage, makeLaptopNearItsEnd);
}
DisplayList batteryOnHold(Stage& stage) {
    return batteryPanel(stage, makeLaptopOnHold);
}
DisplayList batteryWorn(Stage& stage) {
    return batteryPanel(stage, makeLaptopWithWornBattery);
}
DisplayList batteryNone(Stage& stage) {
    return batteryPanel(stage, makeLoadedDesktop);
}

DisplayList dashboardQuitPointedAt(Stage& stage) {
    return Program(stage).openDashboard().pass(5s).pointAt("Quit").picture();
}
DisplayList dashboardPodPointedAt(Stage& stage) {
    return Program(stage).openDashboard().pass(5s).pointAt("RAM").picture();
}
DisplayList dashboardChangingPods(Stage& stage) {
    return Program(stage).openDashboard().pass(5s).press("RAM").pass(100ms).picture();
}

}  // namespace norvane::gallery
