#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "Chance.h"
#include "platform/scripted/ScriptedMachine.h"
#include "telemetry/FaultyPorts.h"
#include "WatchedNotifications.h"
#include "WatchedWindowServer.h"

namespace norvane {

// A laptop with four cores of either kind whose life goes up and down by chance, on both sides of every
// threshold. Each operation that a tick asks can be made to fail.
class SoakMachine {
 public:
    explicit SoakMachine(Chance& chance);
    SoakMachine(const SoakMachine&) = delete;
    SoakMachine& operator=(const SoakMachine&) = delete;

    // The application's, with the ports that fail.
    Platform platform();

    // One quantity becomes another one.
    void change();
    // One operation fails from now on, in one of its ways. Says which.
    std::string strike();
    // Every fault of every operation, one after the other; slow ones are those of what is seldom asked for.
    void eachFault(const std::function<void(bool isSlow)>& live);
    // The operation that has failed longest works again; with nothing to mend nothing happens.
    void mend();
    // Everything works, and the machine rests.
    void calmDown();
    // What the scripted side remembers of every call would fill the memory in a year.
    void forget();

    ScriptedMachine scripted;
    WatchedNotifications notifications{faultyNotifications_};
    WatchedWindowServer windowServer{scripted.windowServer};
    // Called within a tick: once all that decides the light states has been asked for, and when the full half
    // begins. The ports give the same answers as to the tick.
    std::function<void()> onLightHalf;
    std::function<void()> onFullHalf;
    std::uint64_t strikes = 0;

 private:
    struct Life {
        int thermal = 0;
        std::int64_t pressure = 1;
        double compressedGB = 1;
        double swapGB = 0;
        double swapMBps = 0;
        double diskMBps = 1;
        std::int64_t gpu = 5;
        std::int64_t freeGB = 200;
        std::int64_t charge = 80;
        std::int64_t heat = 3'000;  // of the battery, in hundredths of a degree
        bool isPluggedIn = true;
        std::size_t sticks = 1;
    };

    void answer();
    double secondsAwake() const;
    std::vector<VolumeURL> volumes() const;

    Chance& chance_;
    Life life_;
    bool isLooking_ = false;
    std::vector<AnyOperation*> struck_;
    Operations operations_;
    FaultyWallClock wallClock_{scripted.time.wallClock(), operations_};
    FaultyHostPort hostPort_{scripted.hostPort, operations_};
    FaultySysctl sysctl_{scripted.sysctl, operations_};
    FaultyProcessInfo processInfo_{scripted.processInfo, operations_};
    FaultyRegistry registry_{scripted.registry, operations_};
    FaultyPowerSources powerSources_{scripted.powerSources, operations_};
    FaultyFileManager fileManager_{scripted.fileManager, operations_};
    FaultyUserNotificationCenter faultyNotifications_{scripted.userNotificationCenter, operations_};
    FaultyUserDefaults defaults_{scripted.userDefaults, operations_};
    FaultyUUIDSource uuids_{scripted.uuidSource, operations_};
};

}  // namespace norvane
