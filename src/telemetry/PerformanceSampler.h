#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/Platform.h"
#include "platform/Published.h"
#include "preferences/PreferencesStore.h"
#include "telemetry/BatteryReader.h"
#include "telemetry/CachedBattery.h"
#include "telemetry/ComponentState.h"
#include "telemetry/CPUHistoryPoint.h"
#include "telemetry/CPUReader.h"
#include "telemetry/DeviceIdentity.h"
#include "telemetry/DiskReader.h"
#include "telemetry/DiskSnapshot.h"
#include "telemetry/DiskVelocity.h"
#include "telemetry/GPUReader.h"
#include "telemetry/HardwareAlerts.h"
#include "telemetry/MemoryReader.h"
#include "telemetry/MenuBarStats.h"
#include "telemetry/StateClassifier.h"
#include "telemetry/SustainedMetric.h"
#include "telemetry/SystemSnapshot.h"
#include "telemetry/SystemStates.h"
#include "telemetry/ThermalLevel.h"
#include "telemetry/TickCadence.h"
#include "telemetry/VolumeReader.h"

namespace norvane {

// Reads the machine once a second, conditions what it reads and publishes the result.
//
// A tick has two halves. The light half always runs: total CPU, memory, pressure, heat, the debounced states,
// and what the panel's label shows. The full half runs only while the dashboard is on screen, and at once
// when it opens: it reads everything else and publishes a whole `SystemSnapshot`. So a closed dashboard costs
// little and an open one is live at a tick's notice.
//
// The private state belongs to the tick, which runs on a serial queue of its own: two ticks never overlap.
// Published values are written on the main thread alone.
class PerformanceSampler : public std::enable_shared_from_this<PerformanceSampler> {
 public:
    using SnapshotPointer = std::shared_ptr<const SystemSnapshot>;
    using Volumes = std::vector<DiskSnapshot>;
    using History = std::vector<CPUHistoryPoint>;

    static constexpr std::size_t kCPUHistoryLength = 60;

    // Main thread. Platform and preferences outlive the sampler.
    static std::shared_ptr<PerformanceSampler> create(const Platform& platform,
                                                      const PreferencesStore& preferences);
    ~PerformanceSampler();

    // Main thread. Begins to tick: now, and then every second. Where it ticks already, it begins anew.
    void start();
    // Main thread. Pauses; nothing else is reset, `start` goes on with the same counters, windows and caches.
    void stop();

    // Main thread. Whether the dashboard is on screen or pinned. True runs a tick at once, and one that reads
    // everything where it was false before.
    void setUIVisible(bool value);

    // The last complete snapshot; null before the first.
    const Published<SnapshotPointer>& snapshot() const { return snapshot_; }
    // The volumes as last published. Never null.
    const Published<std::shared_ptr<const Volumes>>& volumes() const { return volumes_; }
    // The debounced state of the whole system.
    const Published<ComponentState>& systemState() const { return systemState_; }
    const Published<MenuBarStats>& menuBarStats() const { return menuBarStats_; }
    const Published<bool>& isUIVisible() const { return isUIVisible_; }
    // At most `kCPUHistoryLength` points, oldest first. Never null.
    const Published<std::shared_ptr<const History>>& cpuHistory() const { return cpuHistory_; }

 private:
    // What both halves of a tick look at.
    struct LightReadings {
        double cpu;
        double cpuSustained;
        MemoryBasics memory;
        std::int64_t pressure;
        SystemStates states;
    };

    PerformanceSampler(const Platform& platform, const PreferencesStore& preferences);

    void tick();
    LightReadings runLightHalf(TickToken token);
    void runFullHalf(TickToken token, const TickCadence& cadence, const LightReadings& light);
    // With everything that is read; what is decided from it is still to come.
    SystemSnapshot assembled(const LightReadings& light, CoreUsageReading cores, const MemoryDetail& detail,
                             WallInstant now);

    // Written on the main thread.
    Published<SnapshotPointer> snapshot_;
    Published<std::shared_ptr<const Volumes>> volumes_{std::make_shared<const Volumes>()};
    Published<ComponentState> systemState_{ComponentState::normal};
    Published<MenuBarStats> menuBarStats_;
    Published<bool> isUIVisible_{false};
    Published<std::shared_ptr<const History>> cpuHistory_{std::make_shared<const History>()};

    MainQueue& mainQueue_;
    const WallClock& wallClock_;
    ProcessInfo& processInfo_;

    // From here on to the queue: owned by the tick.
    bool forceFullSampleNextTick_ = false;
    std::uint64_t tickCount_ = 0;
    CPUReader cpuReader_;
    MemoryReader memoryReader_;
    GPUReader gpuReader_;
    DiskReader diskReader_;
    VolumeReader volumeReader_;
    BatteryReader batteryReader_;
    DeviceIdentity deviceIdentity_;
    StateClassifier classifier_;
    HardwareAlerts alerts_;
    SustainedMetric<double> cpuSustained_{3};
    // What is read at a fraction of the ticks stands until the next reading.
    double cachedGPU_ = 0;
    DiskVelocity cachedDiskVelocity_;
    ThermalLevel cachedThermal_ = ThermalLevel::nominal;
    CachedBattery cachedBattery_;
    std::shared_ptr<const Volumes> cachedVolumes_ = std::make_shared<const Volumes>();

    // Last, so that it ends first: its tasks touch everything above.
    std::unique_ptr<SerialQueue> queue_;
    std::unique_ptr<RepeatingTimer> timer_;
};

}  // namespace norvane
