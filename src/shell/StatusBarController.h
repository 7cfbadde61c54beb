#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dashboard/InfoPopoverView.h"
#include "dashboard/MenuRootView.h"
#include "dashboard/PreferencesView.h"
#include "insight/SmartPodManager.h"
#include "platform/Platform.h"
#include "preferences/PreferencesStore.h"
#include "shell/MenuBarStatsModel.h"
#include "shell/PassthroughHostingView.h"
#include "shell/PinState.h"
#include "shell/Popover.h"
#include "shell/PopoverDelegate.h"
#include "shell/StatusButton.h"
#include "shell/WelcomePopoverController.h"
#include "telemetry/PerformanceSampler.h"

namespace norvane {

// Owns everything that the user touches in the panel: the status item with its icon or label, the popovers,
// the welcome, and the sampler that feeds them. It turns a click into a popover, keeps icon or label current,
// tells the sampler when the dashboard is on screen, and pins. One for an application, for the life of the
// process. Main thread only.
class StatusBarController final : public std::enable_shared_from_this<StatusBarController>,
                                  private PopoverDelegate {
 public:
    // Brings the status item up and enqueues the welcome and the sampler's start. Platform, preferences and
    // what `hardware` gives outlive the controller.
    static std::shared_ptr<StatusBarController> create(const Platform& platform,
                                                       PreferencesStore& preferences,
                                                       std::function<const CPUHardwareInfo&()> hardware);

    void statusItemClicked();
    void showWelcomeIfNeeded();
    // Brings the dashboard up if it is hidden, as a start of the application from elsewhere does; it never
    // closes it. Who has not been welcomed is welcomed first.
    void showDashboard();
    // What a panel with menus of its own offers in the item's.
    void setContextMenu(std::vector<StatusMenuItem> items) { statusItem_->setContextMenu(std::move(items)); }
    void togglePin();
    void openSettings();
    void openInfo();

    const PerformanceSampler& sampler() const { return *sampler_; }
    const SmartPodManager& smartPodManager() const { return smartPodManager_; }
    // Null before the first click.
    const MenuRootView* menuRootView() const { return menuRootView_ ? &*menuRootView_ : nullptr; }
    // Where the status item's button is on the screen; none without one.
    std::optional<Rect> buttonFrame() const { return statusItem_->buttonFrame(); }
    const PinState& pin() const { return pin_; }
    std::optional<MenuBarIconMode> currentMenuBarMode() const { return currentMenuBarMode_; }
    const std::optional<std::string>& lastIconName() const { return lastIconName_; }

 private:
    enum class Force { no, yes };

    StatusBarController(const Platform& platform, PreferencesStore& preferences,
                        std::function<const CPUHardwareInfo&()> hardware);
    void startUp();

    // The icon and the label.
    void updateIcon(ComponentState state);
    void updateStats(const MenuBarStats& stats);
    void updateToolTip(const MenuBarStats& stats);
    void applyMenuBarMode(MenuBarIconMode mode, Force force);
    void showStatsLabel();
    void showIcon();
    void crossFadeToLastIcon();
    void switchMenuBarMode(MenuBarIconMode mode);
    void reopenLater(bool isSettings);
    Cancellation& reopening(bool isSettings) { return isSettings ? settingsReopening_ : mainReopening_; }

    // The popovers, built on first use.
    Popover& mainPopover();
    Popover& settingsPopover();
    Popover& infoPopover();
    // Below the button, with the keyboard, and soon on the screen. Nothing without a button.
    void present(Popover& popover);
    void closeSettingsAndInfo();
    void openBesideMain(Popover& popover);
    void clampSoon(Popover& popover);
    void clampPopoverToScreen(const Popover& popover) const;
    void buttonAppeared();
    void showAwaited();
    bool wasJustClosedByThisClick() const;
    bool hasSeenWelcome() const;
    void continueFromWelcome();
    void endWelcome();

    void popoverWillShow(Popover& popover) override;
    bool popoverShouldClose(Popover& popover) override;
    void popoverDidClose(Popover& popover) override;
    bool isMain(const Popover& popover) const { return mainPopover_ && &popover == &*mainPopover_; }

    // Runs a method of the controller in a later turn, or after a delay, if there still is one.
    template <typename Function>
    void enqueue(Function function);
    template <typename Function>
    [[nodiscard]] Cancellation after(std::chrono::nanoseconds delay, Function function);

    Platform platform_;
    PreferencesStore& preferences_;
    std::shared_ptr<PerformanceSampler> sampler_;
    SmartPodManager smartPodManager_;
    std::function<const CPUHardwareInfo&()> hardware_;

    StatusButton button_;
    MenuBarStatsModel statsModel_;
    std::optional<PassthroughHostingView> statsHostingView_;  // in mode `stats`
    std::unique_ptr<StatusItem> statusItem_;
    std::optional<MenuBarIconMode> currentMenuBarMode_;
    std::optional<std::string> lastIconName_;  // last put on the button
    std::string toolTip_;
    Cancellation fade_;

    PinState pin_;
    std::optional<MonotonicInstant> closed_;  // dashboard or welcome, the last time
    // Asked for while there was no button to hang from.
    enum class Awaited { nothing, welcome, dashboard, settings };
    Awaited awaited_ = Awaited::nothing;
    // Built on first use and kept, each view before the popover that shows it.
    std::optional<MenuRootView> menuRootView_;
    std::optional<Popover> mainPopover_;
    std::optional<PreferencesView> preferencesView_;
    std::optional<Popover> settingsPopover_;
    std::optional<InfoPopoverView> infoPopoverView_;
    std::optional<Popover> infoPopover_;
    std::shared_ptr<WelcomePopoverController> welcomeController_;  // while the welcome is up
    // One for each popover: a mode may change again before the other one is back.
    Cancellation settingsReopening_;
    Cancellation mainReopening_;
    Cancellation continuing_;
    Cancellation settling_;
    std::vector<Cancellation> cancellables_;
};

}  // namespace norvane
