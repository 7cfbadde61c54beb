#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/DrmClients.h"
#include "platform/linux/DrmUtilization.h"
#include "platform/linux/IdleResidency.h"
#include "platform/linux/NvidiaManagement.h"
#include "platform/linux/RootFolder.h"
#include "platform/linux/SystemCalls.h"
#include "platform/RegistryEntry.h"

namespace norvane {

// The machine's graphics processors and how busy they are. One that sleeps is never woken up: of it, nothing
// but its power state is opened. Reading may wait for a device or a driver's library, so this belongs on a
// lane.
class Accelerators {
 public:
    struct Answer {
        // One for each device. Where there is no number, as of a device that sleeps, its properties have no
        // "PerformanceStatistics", and so it does not count.
        std::vector<RegistryEntry> services;
        // Whether any device of this machine may ever give a number, as those of most virtual machines may
        // not.
        bool hasSources = false;
        std::optional<MonotonicInstant> readAt;
    };

    // A machine without sources is looked at this often: a device may be plugged in, a driver loaded.
    static constexpr std::chrono::seconds kLookAgain{60};

    Accelerators(RootFolder root, const SystemCalls& calls);

    Answer read();

    // Whether reading again may give another answer.
    static bool isDue(const Answer& newest, MonotonicInstant now);

 private:
    // Where a driver says how busy its device is. Of a device that sleeps, nobody is to ask.
    enum class Source { none, asleep, busyPercent, rc6Residency, gtIdleResidency, clientsOnly, management };

    struct Card {
        // "/sys/class/drm/card0/".
        std::string folder;
        // As its bus calls it: "0000:00:02.0". Tells devices apart. Empty of one that sleeps.
        std::string device;
        Source source = Source::none;
    };
    // What is remembered from one reading of an awake device to the next.
    struct History {
        DrmUtilization clients;
        // By the counter's path.
        std::map<std::string, IdleResidency> idle;
    };
    // What was asked once for all cards.
    struct Common {
        DrmClients::Answer clients;
        NvidiaManagement::Percents management;
    };

    static Source sourceOf(std::string_view driver);
    static bool hasClients(Source source);
    std::vector<Card> look(const std::vector<std::string>& names) const;
    bool isAwake(const std::string& folder) const;
    Common readCommon(const std::vector<std::string>& names, const std::vector<Card>& cards);

    std::optional<double> percent(const Card& card, Common& common);
    std::optional<double> busyPercent(const Card& card) const;
    // From the clients; from the counters of idling where the kernel tells nothing about clients. Of several
    // counters, the one that idled least counts.
    std::optional<double> clientsPercent(const Card& card, DrmClients::Answer& clients);
    std::vector<std::string> idleCounters(const Card& card) const;

    RootFolder root_;
    std::function<MonotonicInstant()> now_;
    DrmClients drmClients_;
    NvidiaManagement nvidia_;
    // By device. What has slept or gone begins anew.
    std::map<std::string, History> histories_;
};

}  // namespace norvane
