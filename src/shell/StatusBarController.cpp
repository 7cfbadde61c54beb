#include "shell/StatusBarController.h"

#include <chrono>
#include <utility>

#include "preferences/DefaultsKeys.h"
#include "preferences/StoredValue.h"
#include "shell/MenuBarStatsText.h"
#include "shell/MenuIcon.h"
#include "shell/ScreenClamp.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// Of the status item while it shows the label, in points.
constexpr double kStatsLength = 54.0;

// A fade out and a fade in, each so long.
constexpr auto kFade = 150ms;
// From the closing of a popover whose anchor changes to its return, and from there to the keyboard.
constexpr auto kReopening = 600ms;
constexpr auto kKeyAfterReopening = 120ms;
// A panel that tells of a press afterwards does so within this time.
constexpr auto kLateClick = 300ms;
// A panel that starts takes the keyboard now and then: what hangs from it then would go at once.
constexpr auto kPanelSettles = 1s;
// From the welcome to the dashboard.
constexpr auto kAfterWelcome = 100ms;

}  // namespace

template <typename Function>
void StatusBarController::enqueue(Function function) {
    platform_.dispatch.mainQueue().async([weak = weak_from_this(), function] {
        if (const auto self = weak.lock()) function(*self);
    });
}

template <typename Function>
Cancellation StatusBarController::after(std::chrono::nanoseconds delay, Function function) {
    return platform_.dispatch.mainQueue().after(delay, [weak = weak_from_this(), function] {
        if (const auto self = weak.lock()) function(*self);
    });
}

std::shared_ptr<StatusBarController> StatusBarController::create(
    const Platform& platform, PreferencesStore& preferences,
    std::function<const CPUHardwareInfo&()> hardware) {
    std::shared_ptr<StatusBarController> controller(
        new StatusBarController(platform, preferences, std::move(hardware)));
    controller->startUp();
    return controller;
}

StatusBarController::StatusBarController(const Platform& platform, PreferencesStore& preferences,
                                         std::function<const CPUHardwareInfo&()> hardware)
    : platform_(platform),
      preferences_(preferences),
      sampler_(PerformanceSampler::create(platform, preferences)),
      hardware_(std::move(hardware)),
      button_(platform) {}

void StatusBarController::startUp() {
    statusItem_ = platform_.windowServer.statusItemWithLength(StatusItem::kSquareLength);
    platform_.application.setActivationPolicy(ActivationPolicy::accessory);
    statusItem_->setAction([weak = weak_from_this()] {
        if (const auto self = weak.lock()) self->statusItemClicked();
    });
    applyMenuBarMode(preferences_.menuBarIconMode(), Force::no);
    // Again, so that the button is built even where the first application left it alone.
    applyMenuBarMode(preferences_.menuBarIconMode(), Force::yes);

    enqueue([](StatusBarController& self) { self.showWelcomeIfNeeded(); });
    enqueue([](StatusBarController& self) { self.sampler_->start(); });
    // Asked at every start; a refusal shows in that alerts are not, and in nothing else.
    platform_.userNotificationCenter.requestAuthorization([](bool) {});

    cancellables_.push_back(
        sampler_->systemState().observe([this](ComponentState state) { updateIcon(state); }));
    cancellables_.push_back(
        sampler_->menuBarStats().observe([this](const MenuBarStats& stats) { updateStats(stats); }));
    cancellables_.push_back(
        sampler_->menuBarStats().observe([this](const MenuBarStats& stats) { updateToolTip(stats); }));
    cancellables_.push_back(statusItem_->onButtonDidAppear([this] { buttonAppeared(); }));
    cancellables_.push_back(
        preferences_.observe([this] { switchMenuBarMode(preferences_.menuBarIconMode()); }));
}

// --- Icon and label
// ------------------------------------------------------------------------------------------

void StatusBarController::updateIcon(ComponentState state) {
    if (currentMenuBarMode_ != MenuBarIconMode::on) return;
    std::string name = menuIconName(state);
    if (name == lastIconName_) return;
    lastIconName_ = name;
    button_.setImage(std::move(name));
}

void StatusBarController::updateStats(const MenuBarStats& stats) {
    if (currentMenuBarMode_ != MenuBarIconMode::stats) return;
    statsModel_.cpuPercent.set(stats.cpu);
    statsModel_.ramUsedGB.set(stats.ramUsed);
    statsModel_.ramTotalGB.set(stats.ramTotal);
}

// In both modes: it tells the figures where the item shows a picture.
void StatusBarController::updateToolTip(const MenuBarStats& stats) {
    std::string text = menuBarToolTip(stats);
    if (text == toolTip_) return;
    toolTip_ = std::move(text);
    statusItem_->setToolTip(toolTip_);
}

void StatusBarController::applyMenuBarMode(MenuBarIconMode mode, Force force) {
    if (force == Force::no && currentMenuBarMode_ == mode) return;
    currentMenuBarMode_ = mode;
    // An item without a button for now keeps what it is told until it has one.
    if (mode == MenuBarIconMode::stats) {
        showStatsLabel();
    } else {
        showIcon();
    }
}

void StatusBarController::showStatsLabel() {
    fade_.cancel();
    button_.setImage(std::nullopt);
    button_.setAlphaValue(1);
    statusItem_->setLength(kStatsLength);
    statusItem_->setContent(nullptr);  // before the one that it shows goes away
    statsHostingView_.emplace(statsModel_, platform_);
    statusItem_->setContent(&*statsHostingView_);
    // At once, so that the label doesn't wait for the next tick.
    updateStats(sampler_->menuBarStats().get());
}

void StatusBarController::showIcon() {
    statusItem_->setLength(StatusItem::kSquareLength);
    statusItem_->setContent(&button_.content());
    statsHostingView_.reset();
    lastIconName_ = menuIconName(sampler_->systemState().get());
    crossFadeToLastIcon();
}

// What the button shows goes, then the icon comes.
void StatusBarController::crossFadeToLastIcon() {
    if (platform_.appearance.reducesMotion()) {
        fade_.cancel();
        button_.setImage(lastIconName_);
        button_.setAlphaValue(1);
        return;
    }
    constexpr double kSeconds = std::chrono::duration<double>(kFade).count();
    button_.fadeTo(0, kSeconds);
    fade_ = after(kFade, [](StatusBarController& self) {
        self.button_.setImage(self.lastIconName_);
        self.button_.fadeTo(1, kSeconds);
    });
}

void StatusBarController::switchMenuBarMode(MenuBarIconMode mode) {
    if (currentMenuBarMode_ == mode) return;
    const bool isSettingsShown = settingsPopover().isShown();
    const bool isMainShown = mainPopover().isShown();
    if (!isSettingsShown && !isMainShown) {
        applyMenuBarMode(mode, Force::no);
        return;
    }
    // The anchor changes: what hangs from it goes away with the old one and comes back at the new one.
    (isSettingsShown ? settingsPopover() : mainPopover()).performClose();
    applyMenuBarMode(mode, Force::no);
    reopening(isSettingsShown) = after(
        kReopening, [isSettingsShown](StatusBarController& self) { self.reopenLater(isSettingsShown); });
}

void StatusBarController::reopenLater(bool isSettings) {
    const auto button = statusItem_->buttonFrame();
    if (!button) {
        awaited_ = isSettings ? Awaited::settings : Awaited::dashboard;
        return;
    }
    const auto popover = [isSettings](StatusBarController& self) -> Popover& {
        return isSettings ? self.settingsPopover() : self.mainPopover();
    };
    popover(*this).showBelow(*button);
    reopening(isSettings) = after(kKeyAfterReopening, [popover](StatusBarController& self) {
        if (PopoverWindow* const window = popover(self).window()) window->makeKeyWindow();
    });
    clampPopoverToScreen(popover(*this));
}

// --- Popovers
// ------------------------------------------------------------------------------------------------

Popover& StatusBarController::mainPopover() {
    if (!mainPopover_) {
        const auto weakly = [weak = weak_from_this()](void (StatusBarController::*method)()) {
            return [weak, method] {
                if (const auto self = weak.lock()) ((*self).*method)();
            };
        };
        menuRootView_.emplace(
            platform_, preferences_, sampler_, smartPodManager_, hardware_,
            MenuRootView::Callbacks{.onTogglePin = weakly(&StatusBarController::togglePin),
                                    .onOpenSettings = weakly(&StatusBarController::openSettings),
                                    .onOpenInfo = weakly(&StatusBarController::openInfo)});
        mainPopover_.emplace(platform_.windowServer, platform_.dispatch.mainQueue(),
                             menuRootView_->content());
        mainPopover_->setBehavior(PopoverBehavior::transient);
        mainPopover_->setDelegate(this);
    }
    return *mainPopover_;
}

Popover& StatusBarController::settingsPopover() {
    if (!settingsPopover_) {
        preferencesView_.emplace(platform_, preferences_);
        settingsPopover_.emplace(platform_.windowServer, platform_.dispatch.mainQueue(),
                                 preferencesView_->content());
        settingsPopover_->setBehavior(PopoverBehavior::semitransient);
    }
    return *settingsPopover_;
}

Popover& StatusBarController::infoPopover() {
    if (!infoPopover_) {
        infoPopoverView_.emplace(platform_);
        infoPopover_.emplace(platform_.windowServer, platform_.dispatch.mainQueue(),
                             infoPopoverView_->content());
        infoPopover_->setBehavior(PopoverBehavior::semitransient);
    }
    return *infoPopover_;
}

void StatusBarController::statusItemClicked() {
    if (!statusItem_->buttonFrame()) return;
    awaited_ = Awaited::nothing;
    // A press on the item is one outside of what stands there only for the moment.
    closeSettingsAndInfo();
    if (wasJustClosedByThisClick()) return;
    if (!hasSeenWelcome()) {
        showWelcomeIfNeeded();
        return;
    }
    if (pin_.isPinned && mainPopover().isShown()) return;
    if (mainPopover().isShown()) {
        mainPopover().performClose();
        return;
    }
    platform_.application.activateIgnoringOtherApps();
    present(mainPopover());
}

// The press that closed dashboard or welcome, as one outside, was the one that is told of only now.
bool StatusBarController::wasJustClosedByThisClick() const {
    return !statusItem_->knowsItsPresses() && closed_ &&
           platform_.monotonicClock.now() - *closed_ < kLateClick;
}

void StatusBarController::showDashboard() {
    if (!hasSeenWelcome()) {
        showWelcomeIfNeeded();
        return;
    }
    if (!statusItem_->buttonFrame()) {
        awaited_ = Awaited::dashboard;
        return;
    }
    closeSettingsAndInfo();
    platform_.application.activateIgnoringOtherApps();
    present(mainPopover());
}

void StatusBarController::buttonAppeared() {
    if (awaited_ == Awaited::nothing) return;
    settling_ = after(kPanelSettles, [](StatusBarController& self) { self.showAwaited(); });
}

void StatusBarController::showAwaited() {
    switch (std::exchange(awaited_, Awaited::nothing)) {
        case Awaited::nothing:
            return;
        case Awaited::welcome:
            showWelcomeIfNeeded();
            return;
        case Awaited::dashboard:
            showDashboard();
            return;
        case Awaited::settings:
            reopenLater(true);
            return;
    }
}

void StatusBarController::present(Popover& popover) {
    const auto button = statusItem_->buttonFrame();
    if (!button) return;
    popover.showBelow(*button);
    if (PopoverWindow* const window = popover.window()) window->makeKeyWindow();
    clampSoon(popover);
}

// The popovers are kept for the life of the controller, and so can be meant by a task.
void StatusBarController::clampSoon(Popover& popover) {
    enqueue([&popover](StatusBarController& self) { self.clampPopoverToScreen(popover); });
}

void StatusBarController::clampPopoverToScreen(const Popover& popover) const {
    PopoverWindow* const window = popover.window();
    if (window == nullptr) return;
    const auto visibleFrame = window->visibleFrame();
    if (visibleFrame) window->setFrame(clampedToScreen(window->frame(), *visibleFrame));
}

void StatusBarController::closeSettingsAndInfo() {
    for (std::optional<Popover>* popover : {&settingsPopover_, &infoPopover_}) {
        if (*popover) (*popover)->performClose();
    }
}

void StatusBarController::togglePin() {
    pin_.isPinned = !pin_.isPinned;
    mainPopover().setBehavior(pin_.mainPopoverBehavior());
}

void StatusBarController::openSettings() {
    openBesideMain(settingsPopover());
}

void StatusBarController::openInfo() {
    openBesideMain(infoPopover());
}

void StatusBarController::openBesideMain(Popover& popover) {
    if (!statusItem_->buttonFrame()) return;
    if (pin_.isPinned) {
        pin_.isTemporarilySuspendingPin = true;
        present(popover);
        popover.setDelegate(this);
    } else {
        mainPopover().performClose();
        platform_.application.activateIgnoringOtherApps();
        present(popover);
    }
}

void StatusBarController::popoverWillShow(Popover& popover) {
    if (isMain(popover)) sampler_->setUIVisible(true);
}

bool StatusBarController::popoverShouldClose(Popover& popover) {
    return !isMain(popover) || pin_.mayMainPopoverClose();
}

void StatusBarController::popoverDidClose(Popover& popover) {
    if (isMain(popover)) {
        closed_ = platform_.monotonicClock.now();
        if (!pin_.isPinned) sampler_->setUIVisible(false);
        return;
    }
    pin_.isTemporarilySuspendingPin = false;
    applyMenuBarMode(preferences_.menuBarIconMode(), Force::yes);
}

// --- Welcome
// -------------------------------------------------------------------------------------------------

bool StatusBarController::hasSeenWelcome() const {
    const auto stored = platform_.userDefaults.objectForKey(defaultskey::kHasSeenWelcome);
    return stored && storedBool(*stored).value_or(false);
}

void StatusBarController::showWelcomeIfNeeded() {
    if (welcomeController_ || hasSeenWelcome()) return;
    const auto button = statusItem_->buttonFrame();
    if (!button) {
        // A panel may start after us, and the first thing to see must not get lost.
        awaited_ = Awaited::welcome;
        return;
    }
    welcomeController_ = std::make_shared<WelcomePopoverController>(
        platform_,
        [weak = weak_from_this()] {
            if (const auto self = weak.lock()) self->continueFromWelcome();
        },
        [weak = weak_from_this()] {
            if (const auto self = weak.lock()) self->endWelcome();
        });
    platform_.application.activateIgnoringOtherApps();
    welcomeController_->popover().showBelow(*button);
    if (PopoverWindow* const window = welcomeController_->popover().window()) window->makeKeyWindow();
    // A button at the edge of the screen would hang half of it beyond.
    enqueue([](StatusBarController& self) {
        if (self.welcomeController_) self.clampPopoverToScreen(self.welcomeController_->popover());
    });
}

void StatusBarController::continueFromWelcome() {
    platform_.userDefaults.setObject(defaultskey::kHasSeenWelcome, true);
    if (welcomeController_) welcomeController_->popover().performClose();
    endWelcome();
    continuing_ = after(kAfterWelcome, [](StatusBarController& self) {
        self.platform_.application.activateIgnoringOtherApps();
        self.mainPopover().setBehavior(PopoverBehavior::transient);
        self.present(self.mainPopover());
    });
}

// Its own popover is calling: it goes when that is through.
void StatusBarController::endWelcome() {
    if (!welcomeController_) return;
    closed_ = platform_.monotonicClock.now();
    platform_.dispatch.mainQueue().async([ended = std::exchange(welcomeController_, nullptr)] {});
}

}  // namespace norvane
