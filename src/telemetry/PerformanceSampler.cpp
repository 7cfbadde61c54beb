#include "telemetry/PerformanceSampler.h"

#include <chrono>
#include <cmath>
#include <utility>

#include "telemetry/BootVolume.h"

namespace norvane {
namespace {

// The history with one more point, the oldest one gone where it was full.
std::shared_ptr<const PerformanceSampler::History> appended(const PerformanceSampler::History& history,
                                                            const CPUHistoryPoint& point) {
    const bool wasFull = history.size() >= PerformanceSampler::kCPUHistoryLength;
    auto longer = std::make_shared<PerformanceSampler::History>();
    longer->reserve(history.size() + 1);
    longer->assign(history.begin() + (wasFull ? 1 : 0), history.end());
    longer->push_back(point);
    return longer;
}

// Seconds that can be counted with; 0 for what is no length of time.
double timeOr0(double seconds) {
    return std::isfinite(seconds) && seconds > 0 ? seconds : 0;
}

}  // namespace

std::shared_ptr<PerformanceSampler> PerformanceSampler::create(const Platform& platform,
                                                               const PreferencesStore& preferences) {
    return std::shared_ptr<PerformanceSampler>(new PerformanceSampler(platform, preferences));
}

PerformanceSampler::PerformanceSampler(const Platform& platform, const PreferencesStore& preferences)
    : mainQueue_(platform.dispatch.mainQueue()),
      wallClock_(platform.wallClock),
      processInfo_(platform.processInfo),
      cpuReader_(platform.hostPort, platform.sysctl),
      memoryReader_(platform.hostPort, platform.sysctl, platform.processInfo, platform.wallClock),
      gpuReader_(platform.registry),
      diskReader_(platform.registry, platform.wallClock),
      volumeReader_(platform.fileManager, platform.uuidSource),
      batteryReader_(platform.registry, platform.powerSources),
      deviceIdentity_(platform.sysctl),
      alerts_(platform, preferences),
      queue_(platform.dispatch.makeSerialQueue("Norvane.sampler")) {}

PerformanceSampler::~PerformanceSampler() {
    // A running tick finishes and no further one begins, so the tasks below may use `this` as it is.
    timer_.reset();
    queue_.reset();
}

void PerformanceSampler::start() {
    timer_.reset();
    timer_ = queue_->every(std::chrono::seconds(1), [this] { tick(); });
}

void PerformanceSampler::stop() {
    timer_.reset();
}

void PerformanceSampler::setUIVisible(bool value) {
    const bool wasVisible = isUIVisible_.get();
    isUIVisible_.set(value);
    if (!value) return;
    // The tick runs as one of the queue's own. The force travels with it, so that a timer tick that comes in
    // between neither uses it up nor races for it.
    queue_->async([this, force = !wasVisible] {
        if (force) forceFullSampleNextTick_ = true;
        tick();
    });
}

void PerformanceSampler::tick() {
    const bool isVisible = isUIVisible_.get();
    ++tickCount_;
    const TickCadence cadence = cadenceOf(tickCount_, isVisible, forceFullSampleNextTick_);
    const TickToken token{tickCount_,
                          {.accelerators = cadence.readsGPUAndDisk,
                           .battery = cadence.readsBattery,
                           .volumes = cadence.readsVolumes}};
    const LightReadings light = runLightHalf(token);
    // Once, also where both the hidden minute and the dashboard want it.
    if (cadence.readsBattery) cachedBattery_ = batteryReader_.refreshBattery(token);
    if (cadence.isFull) runFullHalf(token, cadence, light);
}

PerformanceSampler::LightReadings PerformanceSampler::runLightHalf(TickToken token) {
    LightReadings light{};
    light.cpu = cpuReader_.readTotalCPUUsage(token);
    light.memory = memoryReader_.readMemoryBasics(token);
    light.pressure = memoryReader_.readMemoryPressure(token);
    cachedThermal_ = thermalLevelOf(processInfo_.thermalState(token));
    light.states = classifier_.updateStates(light.cpu, light.pressure, cachedThermal_, wallClock_.now());

    const MenuBarStats stats{.cpu = light.cpu, .ramUsed = light.memory.used, .ramTotal = light.memory.total};
    mainQueue_.async([weak = weak_from_this(), systemState = light.states.systemState, stats] {
        const auto self = weak.lock();
        if (!self) return;
        self->systemState_.set(systemState);
        self->menuBarStats_.set(stats);
    });

    cpuSustained_.append(light.cpu);
    light.cpuSustained = cpuSustained_.mean();
    return light;
}

void PerformanceSampler::runFullHalf(TickToken token, const TickCadence& cadence,
                                     const LightReadings& light) {
    CoreUsageReading cores = cpuReader_.readCoreUsage(token);
    const MemoryDetail detail = memoryReader_.readMemoryDetail(token);
    if (cadence.readsGPUAndDisk) {
        cachedGPU_ = gpuReader_.readGPUUtilization(token);
        cachedDiskVelocity_ = diskReader_.readDiskVelocity(token);
    }
    if (cadence.readsVolumes) {
        cachedVolumes_ = std::make_shared<const Volumes>(volumeReader_.readMountedVolumes(token));
    }
    forceFullSampleNextTick_ = false;

    // Built on the history as published: while the last tick's publication is still on its way, the older
    // one.
    auto history = appended(
        *cpuHistory_.get(),
        {.performance = cores.performanceUsage, .efficiency = cores.efficiencyUsage, .total = light.cpu});

    const WallInstant now = wallClock_.now();
    SystemSnapshot decided = assembled(light, std::move(cores), detail, now);
    classifier_.classify(decided, now);
    auto snapshot = std::make_shared<const SystemSnapshot>(std::move(decided));

    // By what the user has been shown, not by what is on its way.
    if (const SnapshotPointer published = snapshot_.get()) alerts_.check(*published);

    mainQueue_.async([weak = weak_from_this(), snapshot = std::move(snapshot), volumes = cachedVolumes_,
                      history = std::move(history)] {
        const auto self = weak.lock();
        if (!self) return;
        self->snapshot_.set(snapshot);
        self->volumes_.set(volumes);
        self->cpuHistory_.set(history);
    });
}

SystemSnapshot PerformanceSampler::assembled(const LightReadings& light, CoreUsageReading cores,
                                             const MemoryDetail& detail, WallInstant now) {
    const DiskSnapshot* const boot = bootVolumeOf(*cachedVolumes_);
    const DeviceModel model = deviceIdentity_.deviceModel();
    return {
        .isAppleSilicon = deviceIdentity_.isAppleSilicon(),
        .timestamp = now,
        .cpuState = light.states.cpuState,
        .memoryState = light.states.memoryState,
        .cpuUsagePercent = light.cpu,
        .cpuSustained = light.cpuSustained,
        .performanceCoreUsage = cores.performanceUsage,
        .efficiencyCoreUsage = cores.efficiencyUsage,
        .efficiencyCoreUsages = std::move(cores.efficiencyUsages),
        .performanceCoreUsages = std::move(cores.performanceUsages),
        .idlePercent = cores.idlePercent,
        .uptime = timeOr0(processInfo_.systemUptime()),
        .gpuUsage = cachedGPU_,
        .usedMemoryGB = light.memory.used,
        .totalMemoryGB = light.memory.total,
        .wiredMemoryGB = light.memory.wired,
        .compressedMemoryGB = light.memory.compressed,
        .appMemoryGB = light.memory.app,
        .swapUsedGB = light.memory.swap,
        .memoryPressure = light.pressure,
        .cachedFilesGB = detail.cachedFilesGB,
        .swapReadMBps = detail.swapReadMBps,
        .swapWriteMBps = detail.swapWriteMBps,
        .usedDiskGB = boot != nullptr ? boot->usedGB : 0,
        .totalDiskGB = boot != nullptr ? boot->totalGB : 0,
        .diskReadMBps = cachedDiskVelocity_.readMBps,
        .diskWriteMBps = cachedDiskVelocity_.writeMBps,
        .volumes = *cachedVolumes_,
        .isOnBattery = cachedBattery_.isOnBattery,
        .thermalLevel = cachedThermal_,
        .energyImpact = ImpactState::low,
        .batteryCycleCount = cachedBattery_.cycleCount,
        .batteryDesignCapacitymAh = cachedBattery_.designmAh,
        .batteryMaxCapacitymAh = cachedBattery_.maxmAh,
        .batteryCurrentCapacitymAh = cachedBattery_.currentmAh,
        .batteryHealthCondition = cachedBattery_.condition,
        .batteryTemperatureC = cachedBattery_.temperatureC,
        .batteryPercentage = cachedBattery_.percentage,
        .batteryTimeRemaining = cachedBattery_.timeRemaining,
        .deviceModelName = std::string(model.name),
        .deviceModelIcon = std::string(model.icon),
        .isCharging = cachedBattery_.isCharging,
        .hasBattery = cachedBattery_.hasBattery,
        .isCPUModerateLoad = false,
        .isGPUSaturated = false,
        .isGPUHigh = false,
        .isGPUActive = false,
        .isPCoreSaturated = false,
        .isPCoreActive = false,
        .isSystemIdle = false,
        .isAppleSiliconOptimized = false,
        .isMemoryThrashing = false,
        .isMemorySwapHigh = false,
        .isMemoryHighlyCompressed = false,
        .isMemoryCachingActive = false,
        .isStorageCritical = false,
        .isStorageLow = false,
        .isStorageFilling = false,
        .isStorageHeavyIO = false,
        .isBatteryWarm = false,
    };
}

}  // namespace norvane
