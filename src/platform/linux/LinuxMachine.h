#pragma once

#include <memory>
#include <variant>

#include "platform/linux/BusConnection.h"
#include "platform/linux/LinuxAppearance.h"
#include "platform/linux/LinuxApplication.h"
#include "platform/linux/LinuxDispatch.h"
#include "platform/linux/LinuxKernel.h"
#include "platform/linux/LinuxLoginItem.h"
#include "platform/linux/LinuxMainBundle.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/linux/LinuxPowerProfile.h"
#include "platform/linux/LinuxStandardOutput.h"
#include "platform/linux/LinuxUserDefaults.h"
#include "platform/linux/LinuxUserNotificationCenter.h"
#include "platform/linux/LinuxUUIDSource.h"
#include "platform/linux/LinuxWallClock.h"
#include "platform/linux/LinuxWorkspace.h"
#include "platform/linux/PangoTextRuler.h"
#include "platform/linux/TextLayouts.h"
#include "platform/linux/ThreadLane.h"
#include "platform/linux/X11Connection.h"
#include "platform/linux/X11Settings.h"
#include "platform/linux/X11SingleInstance.h"
#include "platform/linux/X11WindowServer.h"
#include "platform/Platform.h"

namespace norvane {

// This Linux machine behind every port. Main thread only; there is one at a time in a process, made before
// any other thread.
class LinuxMachine {
 public:
    enum class Failure {
        noDisplay,       // to show anything on
        runningAlready,  // on this display; the one that runs shows itself now
    };
    static std::variant<std::unique_ptr<LinuxMachine>, Failure> open();

    Platform platform();
    // Runs the main loop until the application is terminated or the display goes away; gives the process'
    // exit status.
    int run();

 private:
    LinuxMachine(std::unique_ptr<X11Connection> connection, std::unique_ptr<X11SingleInstance> instance);

    LinuxWallClock wallClock_;
    LinuxMonotonicClock monotonicClock_;
    LinuxDispatch dispatch_;
    LinuxApplication application_{dispatch_.mainQueue()};
    LinuxUserDefaults userDefaults_{dispatch_.mainQueue(), LinuxUserDefaults::defaultPath()};
    LinuxUUIDSource uuidSource_;
    // Background tasks may still ask it when this goes away.
    std::shared_ptr<LinuxKernel> kernel_ = std::make_shared<LinuxKernel>(RootFolder(""), SystemCalls::real());
    BusConnection systemBus_{dispatch_.mainQueue(), BusConnection::systemAddress()};
    BusConnection sessionBus_{dispatch_.mainQueue(), BusConnection::sessionAddress()};
    LinuxPowerProfile powerProfile_{dispatch_.mainQueue(), systemBus_, RootFolder(""),
                                    std::make_unique<ThreadLane>("power profile"), kernel_->lowPowerMode()};
    LinuxUserNotificationCenter userNotificationCenter_{dispatch_.mainQueue(), sessionBus_};
    LinuxStandardOutput standardOutput_;
    LinuxLoginItem loginItem_{dispatch_.mainQueue(), dispatch_.backgroundQueue(),
                              AutostartSurroundings::own(), LinuxLoginItem::runningProgram()};
    LinuxWorkspace workspace_{sessionBus_, systemBus_, dispatch_.mainQueue(), dispatch_.backgroundQueue(),
                              RootFolder("")};
    LinuxMainBundle mainBundle_;
    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11SingleInstance> instance_;
    X11Settings xSettings_{*connection_};
    LinuxAppearance appearance_{sessionBus_, xSettings_.current()};
    TextLayouts textLayouts_;
    PangoTextRuler textRuler_{textLayouts_};
    X11WindowServer windowServer_;
};

}  // namespace norvane
