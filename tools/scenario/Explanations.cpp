#include "scenario/Explanations.h"

#include <utility>

#include "insight/BatteryInsight.h"
#include "insight/CPUInsight.h"
#include "insight/MemoryInsight.h"
#include "insight/StorageInsight.h"

namespace norvane {

Explanations::Explanations(const PerformanceSampler& sampler, const PreferencesStore& preferences,
                           ProcessInfo& processInfo)
    : sampler_(sampler), preferences_(preferences), processInfo_(processInfo) {
    visibility_ = sampler_.isUIVisible().observe([this](bool isVisible) { didChangeVisibility(isVisible); });
    // A tick publishes its volumes with each snapshot, just after it: then all that a panel looks at is
    // there.
    publications_ = sampler_.volumes().observe([this](const auto&) { didPublish(); });
}

std::string_view Explanations::live(SnapshotSection section, InsightVerbosity verbosity) const {
    const auto snapshot = sampler_.snapshot().get();
    switch (section) {
        case SnapshotSection::cpu:
            return cpuInsightText(snapshot.get(), verbosity);
        case SnapshotSection::memory:
            return memoryInsightText(snapshot.get(), verbosity);
        case SnapshotSection::storage:
            return storageInsightText(snapshot.get(), *sampler_.volumes().get(),
                                      snapshot ? snapshot->diskReadMBps : 0,
                                      snapshot ? snapshot->diskWriteMBps : 0, verbosity);
        case SnapshotSection::battery:
            return batteryInsightText(snapshot.get(), processInfo_.isLowPowerModeEnabled(), verbosity);
    }
    return {};
}

std::string_view Explanations::live(SnapshotSection section) const {
    return live(section, preferences_.insightVerbosity());
}

std::string_view Explanations::shown(SnapshotSection section) const {
    if (!isVisible_) return {};
    switch (section) {
        case SnapshotSection::cpu:
            return cpu_.displayed(live(section));
        case SnapshotSection::memory:
            return live(section);
        case SnapshotSection::storage:
            return storage_.displayed(live(section));
        case SnapshotSection::battery:
            return battery_.displayed(live(section));
    }
    return {};
}

// A panel is built when the dashboard opens, and its state goes with it.
void Explanations::didChangeVisibility(bool isVisible) {
    if (std::exchange(isVisible_, isVisible) == isVisible || !isVisible) return;
    cpu_ = storage_ = battery_ = {};
    cpu_.appear(live(SnapshotSection::cpu));
    storage_.appear(live(SnapshotSection::storage));
    battery_.appear(live(SnapshotSection::battery));
}

void Explanations::didPublish() {
    if (!isVisible_) return;
    cpu_.update(live(SnapshotSection::cpu));
    storage_.update(live(SnapshotSection::storage));
    battery_.update(live(SnapshotSection::battery));
}

}  // namespace norvane
