#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "insight/OpeningRule.h"
#include "insight/SteadyStatusLine.h"
#include "platform/Platform.h"
#include "preferences/PreferencesStore.h"
#include "telemetry/CPUHardwareInfo.h"
#include "telemetry/PerformanceSampler.h"
#include "views/Element.h"
#include "views/HostedView.h"

namespace norvane {

// The root of the main popover. From top to bottom: the header with its buttons, the status line, the pods,
// the panel and the details of the pod that is expanded, the quit row. Built once and kept; its state
// survives closing and reopening, except as an opening sets it anew. Main thread only.
class MenuRootView {
 public:
    // What the header's buttons do besides what is seen here.
    struct Callbacks {
        std::function<void()> onTogglePin;
        std::function<void()> onOpenSettings;
        std::function<void()> onOpenInfo;
    };

    // What it is given besides the callbacks outlives the view.
    MenuRootView(const Platform& platform, const PreferencesStore& preferences,
                 std::shared_ptr<PerformanceSampler> sampler, const SmartPodManager& smartPodManager,
                 std::function<const CPUHardwareInfo&()> hardware, Callbacks callbacks);
    MenuRootView(const MenuRootView&) = delete;
    MenuRootView& operator=(const MenuRootView&) = delete;

    // The view as a popover shows it.
    SurfaceContent& content() { return hosted_; }

    static constexpr double kWidth = 520;

    // The pod that is expanded; none before the first opening, and after the user has closed it.
    std::optional<SnapshotSection> expandedSection() const { return expandedSection_; }
    // The pod that an opening at this moment would expand. Changes nothing.
    SnapshotSection sectionIfOpened() const;

 private:
    Element body();
    Element header();
    Element headerButton(std::string_view symbolName, Accessible told, std::function<void()> action) const;
    Element statusLine() const;
    Element pods();
    Element pod(SnapshotSection section);
    Element panelCard(SnapshotSection section);
    Element detailList(SnapshotSection section);
    Element quitRow();

    std::string_view systemStatusText() const;
    SnapshotSection sectionBy(OpeningRule& rule) const;
    void pressed(SnapshotSection section);
    void didChangeVisibility(bool isVisible);
    void didPublish();

    Application& application_;
    ProcessInfo& processInfo_;
    UserDefaults& userDefaults_;
    Appearance& appearance_;
    Dispatch& dispatch_;
    FileManager& fileManager_;
    Workspace& workspace_;
    UUIDSource& uuidSource_;
    const PreferencesStore& preferences_;
    std::shared_ptr<PerformanceSampler> sampler_;
    std::function<const CPUHardwareInfo&()> hardware_;
    Callbacks callbacks_;
    SteadyStatusLine status_;
    OpeningRule openingRule_;
    std::optional<SnapshotSection> expandedSection_;
    bool isPinned_ = false;
    bool hasAppeared_ = false;
    bool quitHover_ = false;
    bool wasVisible_ = false;
    HostedView hosted_;
    Cancellation visibilityChanges_;
    Cancellation snapshots_;
    Cancellation preferenceChanges_;
};

}  // namespace norvane
