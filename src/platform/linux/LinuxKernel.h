#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>

#include "platform/linux/Batteries.h"
#include "platform/linux/KernelFiles.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxHost.h"
#include "platform/linux/LinuxPowerSources.h"
#include "platform/linux/LinuxProcessInfo.h"
#include "platform/linux/LinuxRegistry.h"
#include "platform/linux/LinuxSysctl.h"
#include "platform/linux/ProcessorSet.h"
#include "platform/linux/ReadBehind.h"
#include "platform/linux/RootFolder.h"
#include "platform/linux/SlowReading.h"
#include "platform/linux/SystemCalls.h"

namespace norvane {

// What the kernel of one machine tells, as the ports see it; the machine is the running one or a folder that
// one was captured in. Made on any thread; which thread may ask is said at the ports.
class LinuxKernel {
 public:
    // How slow sources are read, and waited for.
    struct Lanes {
        std::function<std::unique_ptr<Lane>(std::string name)> make;
        std::shared_ptr<LaneWaiter> waiter;

        // A thread for each lane that is used.
        static Lanes threads();
        // All on the caller's thread, finished when the call returns.
        static Lanes sameThread();
    };

    LinuxKernel(const RootFolder& root, const SystemCalls& calls, const Lanes& lanes = Lanes::threads());

    HostPort& hostPort() { return host_; }
    Sysctl& sysctl() { return sysctl_; }
    ProcessInfo& processInfo() { return processInfo_; }
    Registry& registry() { return registry_; }
    PowerSources& powerSources() { return powerSources_; }
    FileManager& fileManager() { return fileManager_; }

    // Written by whoever watches the power profile, on any thread.
    std::atomic<bool>& lowPowerMode() { return lowPowerMode_; }

 private:
    KernelFiles files_;
    ProcessorSet processors_;
    ReadBehind readBehind_;
    std::atomic<bool> lowPowerMode_{false};
    LinuxHost host_;
    LinuxSysctl sysctl_;
    LinuxProcessInfo processInfo_;
    SlowReading<Batteries::Answer> batteries_;
    LinuxRegistry registry_;
    LinuxPowerSources powerSources_;
    LinuxFileManager fileManager_;
};

}  // namespace norvane
