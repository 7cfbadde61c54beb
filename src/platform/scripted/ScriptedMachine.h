#pragma once

#include <chrono>

#include "platform/Platform.h"
#include "platform/scripted/FixedTextRuler.h"
#include "platform/scripted/ScriptedAppearance.h"
#include "platform/scripted/ScriptedApplication.h"
#include "platform/scripted/ScriptedDispatch.h"
#include "platform/scripted/ScriptedFileManager.h"
#include "platform/scripted/ScriptedHostPort.h"
#include "platform/scripted/ScriptedLoginItem.h"
#include "platform/scripted/ScriptedLoop.h"
#include "platform/scripted/ScriptedMainBundle.h"
#include "platform/scripted/ScriptedPowerSources.h"
#include "platform/scripted/ScriptedProcessInfo.h"
#include "platform/scripted/ScriptedRegistry.h"
#include "platform/scripted/ScriptedStandardOutput.h"
#include "platform/scripted/ScriptedSysctl.h"
#include "platform/scripted/ScriptedTime.h"
#include "platform/scripted/ScriptedUserDefaults.h"
#include "platform/scripted/ScriptedUserNotificationCenter.h"
#include "platform/scripted/ScriptedUUIDSource.h"
#include "platform/scripted/ScriptedWindowServer.h"
#include "platform/scripted/ScriptedWorkspace.h"

namespace norvane {

// A machine that does what a test says, in virtual time and on one thread: the same script gives the same
// run, and a day passes in a second. It stands behind every port and remembers what it was asked.
class ScriptedMachine {
 public:
    Platform platform() { return platform(textRuler); }
    // With another way of measuring text, which outlives whoever asks the platform.
    Platform platform(TextRuler& ruler) {
        return {.wallClock = time.wallClock(),
                .monotonicClock = time.monotonicClock(),
                .dispatch = dispatch,
                .hostPort = hostPort,
                .sysctl = sysctl,
                .processInfo = processInfo,
                .registry = registry,
                .powerSources = powerSources,
                .fileManager = fileManager,
                .userNotificationCenter = userNotificationCenter,
                .standardOutput = standardOutput,
                .loginItem = loginItem,
                .workspace = workspace,
                .mainBundle = mainBundle,
                .userDefaults = userDefaults,
                .uuidSource = uuidSource,
                .textRuler = ruler,
                .appearance = appearance,
                .windowServer = windowServer,
                .application = application};
    }

    // Lets the machine run on.
    void advance(std::chrono::nanoseconds by) { loop.advance(by); }
    // Lets it do what it has to do at this moment.
    void settle() { loop.runReady(); }
    // Closes the lid for this long: only the wall clock and the uptime go on.
    void suspend(std::chrono::nanoseconds by) {
        time.suspend(by);
        loop.runReady();
    }

    ScriptedTime time;
    ScriptedLoop loop{time};
    ScriptedDispatch dispatch{loop};
    ScriptedHostPort hostPort{time};
    ScriptedSysctl sysctl;
    ScriptedProcessInfo processInfo{time};
    ScriptedRegistry registry;
    ScriptedPowerSources powerSources;
    ScriptedFileManager fileManager;
    ScriptedUserNotificationCenter userNotificationCenter{dispatch.backgroundQueue()};
    ScriptedStandardOutput standardOutput;
    ScriptedLoginItem loginItem{dispatch.mainQueue()};
    ScriptedWorkspace workspace{dispatch.mainQueue()};
    ScriptedMainBundle mainBundle;
    ScriptedUserDefaults userDefaults{dispatch.mainQueue()};
    ScriptedUUIDSource uuidSource;
    FixedTextRuler textRuler;
    ScriptedAppearance appearance;
    ScriptedWindowServer windowServer{time, dispatch.mainQueue()};
    ScriptedApplication application{dispatch.mainQueue()};
};

}  // namespace norvane
