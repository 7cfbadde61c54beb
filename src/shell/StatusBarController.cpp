#include "shell/StatusBarController.h"

#include "shell/ScreenClamp.h"

namespace norvane {
namespace {

constexpr double kStatsLength = 54.0;

}  // namespace

std::shared_ptr<StatusBarController> StatusBarController::create(const Platform& platform,
                                                                 const PreferencesStore& preferences) {
    std::shared_ptr<StatusBarController> controller(new StatusBarController(platform, preferences));
    controller->startUp();
    return controller;
}

StatusBarController::StatusBarController(const Platform& platform, const PreferencesStore& preferences)
    : platform_(platform),
      preferences_(preferences),
      sampler_(PerformanceSampler::create(platform, preferences)) {}

void StatusBarController::startUp() {
    const std::weak_ptr<StatusBarController> weak = weak_from_this();

    statusItem_ = platform_.windowServer.statusItemWithLength(StatusItem::kSquareLength);
    statusItem_->setAction([weak] {
        if (const auto self = weak.lock()) self->statusItemClicked();
    });
    showStatsLabel();

    platform_.dispatch.mainQueue().async([weak] {
        if (const auto self = weak.lock()) self->sampler_->start();
    });
    // Asked once; a refusal shows in that alerts are not, and in nothing else.
    platform_.userNotificationCenter.requestAuthorization([](bool) {});
    cancellables_.push_back(
        sampler_->menuBarStats().observe([this](const MenuBarStats& stats) { updateStats(stats); }));
}

void StatusBarController::showStatsLabel() {
    statusItem_->setLength(kStatsLength);
    statusItem_->setContent(nullptr);  // before the one that it shows goes away
    statsHostingView_.emplace(statsModel_, platform_.textRuler, platform_.appearance);
    statusItem_->setContent(&*statsHostingView_);
    // At once, so that the label doesn't wait for the next tick.
    updateStats(sampler_->menuBarStats().get());
}

void StatusBarController::updateStats(const MenuBarStats& stats) {
    statsModel_.cpuPercent.set(stats.cpu);
    statsModel_.ramUsedGB.set(stats.ramUsed);
    statsModel_.ramTotalGB.set(stats.ramTotal);
}

Popover& StatusBarController::mainPopover() {
    if (!mainPopover_) {
        menuRootView_.emplace(platform_, preferences_, sampler_, smartPodManager_);
        mainPopover_.emplace(platform_.windowServer, platform_.dispatch.mainQueue(),
                             menuRootView_->content());
        mainPopover_->setBehavior(PopoverBehavior::transient);
        mainPopover_->setDelegate(this);
    }
    return *mainPopover_;
}

void StatusBarController::statusItemClicked() {
    const auto button = statusItem_->buttonFrame();
    if (!button) return;
    Popover& popover = mainPopover();
    if (popover.isShown()) {
        popover.performClose();
        return;
    }
    platform_.application.activateIgnoringOtherApps();
    popover.showBelow(*button);
    popover.window()->makeKeyWindow();
    platform_.dispatch.mainQueue().async([weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->clampPopoverToScreen(self->mainPopover());
    });
}

void StatusBarController::clampPopoverToScreen(const Popover& popover) const {
    PopoverWindow* const window = popover.window();
    if (window == nullptr) return;
    const auto visibleFrame = window->visibleFrame();
    if (visibleFrame) window->setFrame(clampedToScreen(window->frame(), *visibleFrame));
}

void StatusBarController::popoverWillShow(Popover&) {
    sampler_->setUIVisible(true);
}

bool StatusBarController::popoverShouldClose(Popover&) {
    return true;
}

void StatusBarController::popoverDidClose(Popover&) {
    sampler_->setUIVisible(false);
}

}  // namespace norvane
