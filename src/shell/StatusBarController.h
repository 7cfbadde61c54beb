#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "dashboard/MenuRootView.h"
#include "insight/SmartPodManager.h"
#include "platform/Platform.h"
#include "preferences/PreferencesStore.h"
#include "shell/MenuBarStatsModel.h"
#include "shell/PassthroughHostingView.h"
#include "shell/Popover.h"
#include "shell/PopoverDelegate.h"
#include "telemetry/PerformanceSampler.h"

namespace norvane {

// Owns everything that the user touches in the panel: the status item and its label, the popover below it,
// and the sampler that feeds both. It turns a click into a popover and tells the sampler when the dashboard
// is on screen. One for an application, for the life of the process. Main thread only.
class StatusBarController final : public std::enable_shared_from_this<StatusBarController>,
                                  private PopoverDelegate {
 public:
    // Brings the status item up, with its label, and enqueues the sampler's start. Platform and preferences
    // outlive the controller.
    static std::shared_ptr<StatusBarController> create(const Platform& platform,
                                                       const PreferencesStore& preferences);

    void statusItemClicked();

    const PerformanceSampler& sampler() const { return *sampler_; }
    const SmartPodManager& smartPodManager() const { return smartPodManager_; }
    // Null before the first click.
    const MenuRootView* menuRootView() const { return menuRootView_ ? &*menuRootView_ : nullptr; }

 private:
    StatusBarController(const Platform& platform, const PreferencesStore& preferences);

    void startUp();
    void showStatsLabel();
    void updateStats(const MenuBarStats& stats);
    Popover& mainPopover();
    void clampPopoverToScreen(const Popover& popover) const;

    void popoverWillShow(Popover& popover) override;
    bool popoverShouldClose(Popover& popover) override;
    void popoverDidClose(Popover& popover) override;

    Platform platform_;
    const PreferencesStore& preferences_;
    std::shared_ptr<PerformanceSampler> sampler_;
    SmartPodManager smartPodManager_;
    MenuBarStatsModel statsModel_;
    std::optional<PassthroughHostingView> statsHostingView_;
    std::unique_ptr<StatusItem> statusItem_;
    // Built on first use and kept, the view before the popover that shows it.
    std::optional<MenuRootView> menuRootView_;
    std::optional<Popover> mainPopover_;
    std::vector<Cancellation> cancellables_;
};

}  // namespace norvane
