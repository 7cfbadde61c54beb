#pragma once

#include "drawing/TextRuler.h"
#include "platform/Appearance.h"
#include "platform/Application.h"
#include "platform/Dispatch.h"
#include "platform/FileManager.h"
#include "platform/HostPort.h"
#include "platform/LoginItem.h"
#include "platform/MainBundle.h"
#include "platform/MonotonicClock.h"
#include "platform/PowerSources.h"
#include "platform/ProcessInfo.h"
#include "platform/Registry.h"
#include "platform/StandardOutput.h"
#include "platform/Sysctl.h"
#include "platform/UserDefaults.h"
#include "platform/UserNotificationCenter.h"
#include "platform/UUIDSource.h"
#include "platform/WallClock.h"
#include "platform/WindowServer.h"
#include "platform/Workspace.h"

namespace norvane {

// Everything that the application asks of the machine it runs on, as one value to hand on. The parts outlive
// the application.
struct Platform {
    WallClock& wallClock;
    MonotonicClock& monotonicClock;
    Dispatch& dispatch;
    HostPort& hostPort;
    Sysctl& sysctl;
    ProcessInfo& processInfo;
    Registry& registry;
    PowerSources& powerSources;
    FileManager& fileManager;
    UserNotificationCenter& userNotificationCenter;
    StandardOutput& standardOutput;
    LoginItem& loginItem;
    Workspace& workspace;
    MainBundle& mainBundle;
    UserDefaults& userDefaults;
    UUIDSource& uuidSource;
    TextRuler& textRuler;
    Appearance& appearance;
    WindowServer& windowServer;
    Application& application;
};

}  // namespace norvane
