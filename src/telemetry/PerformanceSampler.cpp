#include "telemetry/PerformanceSampler.h"

#include <chrono>
#include <utility>

#include "telemetry/MemoryPressure.h"
#include "telemetry/TickCadence.h"

namespace norvane {
namespace {

constexpr double kCriticalCPUPercent = 85.0;

ComponentState stateOf(bool isCritical) {
    return isCritical ? ComponentState::critical : ComponentState::normal;
}

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

}  // namespace

std::shared_ptr<PerformanceSampler> PerformanceSampler::create(const Platform& platform) {
    return std::shared_ptr<PerformanceSampler>(new PerformanceSampler(platform));
}

PerformanceSampler::PerformanceSampler(const Platform& platform)
    : mainQueue_(platform.dispatch.mainQueue()),
      wallClock_(platform.wallClock),
      processInfo_(platform.processInfo),
      cpuReader_(platform.hostPort, platform.sysctl),
      memoryReader_(platform.hostPort, platform.sysctl, platform.processInfo, platform.wallClock),
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
    const TickToken token{tickCount_};
    const LightReadings light = runLightHalf(token);
    if (cadenceOf(tickCount_, isVisible, forceFullSampleNextTick_).isFull) runFullHalf(token, light);
}

PerformanceSampler::LightReadings PerformanceSampler::runLightHalf(TickToken token) {
    LightReadings light{};
    light.cpu = cpuReader_.readTotalCPUUsage(token);
    light.memory = memoryReader_.readMemoryBasics(token);
    light.pressure = memoryReader_.readMemoryPressure(token);
    cachedThermal_ = thermalLevelOf(processInfo_.thermalState(token));

    const WallInstant now = wallClock_.now();
    const bool cpuCritical = light.cpu >= kCriticalCPUPercent;
    const bool memCritical = light.pressure >= kCriticalMemoryPressure;
    const bool thermalCritical = isThermallyLimited(cachedThermal_);
    light.cpuState = cpuDebouncer_.update(stateOf(cpuCritical), now);
    light.memoryState = memDebouncer_.update(stateOf(memCritical), now);
    // The raw conditions, so that heat counts as well and no wait is added to a wait.
    const ComponentState systemStateNow =
        sysDebouncer_.update(stateOf(cpuCritical || memCritical || thermalCritical), now);

    const MenuBarStats stats{.cpu = light.cpu, .ramUsed = light.memory.used, .ramTotal = light.memory.total};
    mainQueue_.async([weak = weak_from_this(), systemStateNow, stats] {
        const auto self = weak.lock();
        if (!self) return;
        self->systemState_.set(systemStateNow);
        self->menuBarStats_.set(stats);
    });

    cpuSustained_.append(light.cpu);
    light.cpuSustained = cpuSustained_.mean();
    return light;
}

void PerformanceSampler::runFullHalf(TickToken token, const LightReadings& light) {
    CoreUsageReading cores = cpuReader_.readCoreUsage(token);
    const MemoryDetail detail = memoryReader_.readMemoryDetail(token);
    forceFullSampleNextTick_ = false;

    // Built on the history as published: while the last tick's publication is still on its way, the older
    // one.
    auto history = appended(
        *cpuHistory_.get(),
        {.performance = cores.performanceUsage, .efficiency = cores.efficiencyUsage, .total = light.cpu});

    auto snapshot = std::make_shared<const SystemSnapshot>(SystemSnapshot{
        .isAppleSilicon = cpuReader_.isAppleSilicon(),
        .timestamp = wallClock_.now(),
        .cpuState = light.cpuState,
        .memoryState = light.memoryState,
        .cpuUsagePercent = light.cpu,
        .cpuSustained = light.cpuSustained,
        .performanceCoreUsage = cores.performanceUsage,
        .efficiencyCoreUsage = cores.efficiencyUsage,
        .efficiencyCoreUsages = std::move(cores.efficiencyUsages),
        .performanceCoreUsages = std::move(cores.performanceUsages),
        .idlePercent = cores.idlePercent,
        .uptime = processInfo_.systemUptime(),
        .gpuUsage = 0,
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
        .usedDiskGB = 0,
        .totalDiskGB = 0,
        .diskReadMBps = 0,
        .diskWriteMBps = 0,
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
        .deviceModelName = "Mac",  // what a machine is called whose model is not known
        .deviceModelIcon = "applelogo",
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
    });

    mainQueue_.async([weak = weak_from_this(), snapshot = std::move(snapshot), volumes = cachedVolumes_,
                      history = std::move(history)] {
        const auto self = weak.lock();
        if (!self) return;
        self->snapshot_.set(snapshot);
        self->volumes_.set(volumes);
        self->cpuHistory_.set(history);
    });
}

}  // namespace norvane
