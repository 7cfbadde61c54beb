#pragma once

#include <string_view>

#include "insight/SnapshotSection.h"
#include "insight/VerbalStabiliser.h"
#include "platform/Cancellation.h"
#include "platform/ProcessInfo.h"
#include "preferences/PreferencesStore.h"
#include "telemetry/PerformanceSampler.h"

namespace norvane {

// What the program explains of each pod's component: the text of this moment, and the steadied one as a panel
// shows it that appears with the dashboard.
class Explanations {
 public:
    // All of them outlive this.
    Explanations(const PerformanceSampler& sampler, const PreferencesStore& preferences,
                 ProcessInfo& processInfo);

    std::string_view live(SnapshotSection section, InsightVerbosity verbosity) const;
    // As the user wants it.
    std::string_view live(SnapshotSection section) const;
    // What the panel shows. The memory's is not steadied. Empty while the dashboard is closed.
    std::string_view shown(SnapshotSection section) const;

 private:
    void didChangeVisibility(bool isVisible);
    void didPublish();

    const PerformanceSampler& sampler_;
    const PreferencesStore& preferences_;
    ProcessInfo& processInfo_;
    bool isVisible_ = false;
    VerbalStabiliser cpu_;
    VerbalStabiliser storage_;
    VerbalStabiliser battery_;
    Cancellation visibility_;
    Cancellation publications_;
};

}  // namespace norvane
