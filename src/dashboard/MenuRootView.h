#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "insight/OpeningRule.h"
#include "insight/SteadyStatusLine.h"
#include "platform/Platform.h"
#include "preferences/PreferencesStore.h"
#include "telemetry/PerformanceSampler.h"
#include "views/Element.h"
#include "views/HostedView.h"

namespace norvane {

// The root of the main popover. From top to bottom: the header, the status line, the pods, the quit row.
// Built once and kept; its state survives closing and reopening, except as an opening sets it anew. Main
// thread only.
class MenuRootView {
 public:
    // Platform, preferences and manager outlive the view.
    MenuRootView(const Platform& platform, const PreferencesStore& preferences,
                 std::shared_ptr<PerformanceSampler> sampler, const SmartPodManager& smartPodManager);
    MenuRootView(const MenuRootView&) = delete;
    MenuRootView& operator=(const MenuRootView&) = delete;

    // The view as a popover shows it.
    SurfaceContent& content() { return hosted_; }

    static constexpr double kWidth = 520;

    // The pod that is expanded; none before the first opening.
    std::optional<SnapshotSection> expandedSection() const { return expandedSection_; }
    // The pod that an opening at this moment would expand. Changes nothing.
    SnapshotSection sectionIfOpened() const;

 private:
    Element body();
    Element header() const;
    Element statusLine() const;
    Element pods() const;
    Element quitRow();

    std::string_view systemStatusText() const;
    SnapshotSection sectionBy(OpeningRule& rule) const;
    void didChangeVisibility(bool isVisible);
    void didPublish();

    Application& application_;
    ProcessInfo& processInfo_;
    const UserDefaults& userDefaults_;
    const PreferencesStore& preferences_;
    std::shared_ptr<PerformanceSampler> sampler_;
    SteadyStatusLine status_;
    OpeningRule openingRule_;
    std::optional<SnapshotSection> expandedSection_;
    bool quitHover_ = false;
    bool wasVisible_ = false;
    HostedView hosted_;
    Cancellation visibilityChanges_;
    Cancellation snapshots_;
};

}  // namespace norvane
