#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <memory>

#include "platform/Cancellation.h"
#include "platform/linux/BusConnection.h"
#include "platform/linux/Lane.h"
#include "platform/linux/LowPowerRule.h"
#include "platform/linux/RootFolder.h"
#include "platform/MainQueue.h"

namespace norvane {

// Follows the power profile that the user has chosen and keeps one flag up to date with it, so that drawing
// code can ask at every evaluation. A service on the system bus tells its changes by itself; a machine
// without one may have a profile of its firmware, which is read again and again. Where there is neither, the
// flag is false and nothing runs.
class LinuxPowerProfile {
 public:
    static constexpr std::chrono::seconds kReadAgain{10};

    // Main thread. The firmware's files are below `root` and are read on the lane. Queue, bus and flag
    // outlive this.
    LinuxPowerProfile(MainQueue& mainQueue, BusConnection& systemBus, const RootFolder& root,
                      std::unique_ptr<Lane> lane, std::atomic<bool>& isLowPower,
                      std::chrono::nanoseconds readAgain = kReadAgain);
    ~LinuxPowerProfile();
    LinuxPowerProfile(const LinuxPowerProfile&) = delete;
    LinuxPowerProfile& operator=(const LinuxPowerProfile&) = delete;

 private:
    // Of one service, the conversation with it.
    struct Conversation {
        Cancellation properties;
        Cancellation owner;
        Cancellation question;
    };
    struct LaneSide;

    void ask(std::size_t service);
    void propertiesChanged(std::size_t service, GVariant* parameters);
    void know(std::size_t service, ProfileService state);
    void update();

    void look();
    void readFirmware();
    void firmwareRead(FirmwareProfile profile);

    MainQueue& mainQueue_;
    BusConnection& bus_;
    const RootFolder root_;
    std::unique_ptr<Lane> lane_;
    std::atomic<bool>& isLowPower_;
    const std::chrono::nanoseconds readAgain_;

    std::array<ProfileService, 2> services_{ProfileService::unknown, ProfileService::unknown};
    std::array<Conversation, 2> conversations_;
    Cancellation connection_;

    std::shared_ptr<LaneSide> laneSide_;
    FirmwareProfile firmware_ = FirmwareProfile::unknown;
    bool isFirmwareWatched_ = false;
    Cancellation nextReading_;
};

}  // namespace norvane
