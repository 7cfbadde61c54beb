#include "Invariants.h"

#include <malloc.h>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <functional>

#include "telemetry/BootVolume.h"
#include "telemetry/MemoryPressure.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// More than ever wait while the main queue is held back for twenty seconds of an open dashboard.
constexpr std::size_t kMostWaiting = 128;
// Besides those of the ticks, in a stretch in which nothing happens: a fade, an answer that was late.
constexpr std::uint64_t kSpareTurns = 32;
// What the allocator and the last choice of words may differ by, in bytes.
constexpr long long kSpareBytes = 32 * 1024;
// Fewer tell nothing of growth.
constexpr std::size_t kFewestDays = 15;

void visit(const AccessibleNode& node, const std::function<void(const AccessibleNode&)>& visitor) {
    visitor(node);
    for (const AccessibleNode& child : node.children)
        visit(child, visitor);
}

bool isPressable(const AccessibleNode& node) {
    return node.isEnabled &&
           std::find(node.actions.begin(), node.actions.end(), "press") != node.actions.end();
}

std::string textOf(const AccessibleNode& node) {
    return "\"" + node.name + "\" at " + node.key;
}

}  // namespace

Invariants::Invariants(SoakMachine& machine) : machine_(machine) {
    machine_.onLightHalf = [this] { lightHalf(); };
    machine_.onFullHalf = [this] { fullHalf(); };
    machine_.notifications.onAdd = [this](const std::string& title) { told(title); };
}

void Invariants::follow(NorvaneApp& app) {
    app_ = &app;
    const PerformanceSampler& sampler = app.delegate().statusBarController()->sampler();
    subscriptions_.push_back(
        sampler.menuBarStats().observe([this](const MenuBarStats& stats) { published(stats); }));
    subscriptions_.push_back(
        sampler.snapshot().observe([this](const auto& snapshot) { published(*snapshot); }));
    asked_.clear();
    cpu_ = memory_ = system_ = {};
    lastCPU_.clear();
    flags_.assign(kBandRules.size(), false);
    impact_ = ImpactState::low;
    earliestSinceImpact_.reset();
    stretches_.clear();
    storageTold_.reset();
    batteryTold_.reset();
}

void Invariants::leave() {
    subscriptions_.clear();
    machine_.windowServer.items = 0;
    app_ = nullptr;
}

// --- In a tick

void Invariants::lightHalf() {
    const Platform platform = machine_.platform();
    asked_.push_back(
        {now(),
         platform.sysctl.sysctlbyname(SysctlNumber::kern_memorystatus_vm_pressure_level, TickToken::none())
             .value_or(kNormalMemoryPressure),
         thermalLevelOf(platform.processInfo.thermalState(TickToken::none()))});
}

// What this tick is going to look at for alerts opens latches again.
void Invariants::fullHalf() {
    if (app_ == nullptr) return;
    const auto snapshot = app_->delegate().statusBarController()->sampler().snapshot().get();
    if (!snapshot) return;
    const PreferencesStore& preferences = app_->preferences();
    const bool isWanted = preferences.sustainedLoadNotificationsEnabled();
    for (const auto& [title, state] : {std::pair("CPU Sustained Load", snapshot->cpuState),
                                       std::pair("Memory Sustained Load", snapshot->memoryState)}) {
        auto& stretch = stretches_[title];
        if (!isWanted || state != ComponentState::critical)
            stretch.reset();
        else if (!stretch)
            stretch = Stretch{now()};
    }
    const DiskSnapshot* const boot = bootVolumeOf(snapshot->volumes);
    if (preferences.storageAlertEnabled() && boot != nullptr &&
        boot->availableForImportantUsage > preferences.storageAlertThresholdGB() + 5) {
        storageTold_.reset();
    }
    if (preferences.batteryAlertEnabled() && !snapshot->isOnBattery) batteryTold_.reset();
}

void Invariants::told(const std::string& title) {
    ++alerts;
    const auto once = [&](std::optional<WallInstant>& last) {
        expect(!last || now() - *last >= 24h, "an alert is told again only when its latch is open", title);
        last = now();
    };
    if (title == "Storage Warning") return once(storageTold_);
    if (title == "Battery Warning") return once(batteryTold_);
    const auto found = stretches_.find(title);
    if (found == stretches_.end() || !found->second) {
        expect(false, "an alert of lasting load needs lasting load", title);
        return;
    }
    Stretch& stretch = *found->second;
    expect(!std::exchange(stretch.isTold, true), "lasting load is told once", title);
    expect(now() - stretch.start >= 180s, "an alert of lasting load comes after three minutes", title);
}

// --- What a tick has published

void Invariants::published(const MenuBarStats& stats) {
    ++ticks;
    expect(!asked_.empty(), "each tick publishes once");
    if (asked_.empty()) return;
    const Asked tick = asked_.front();
    asked_.pop_front();
    const bool isBusy = stats.cpu >= 85;
    const bool isShort = tick.pressure >= kCriticalMemoryPressure;
    cpu_.see(isBusy, tick.now);
    memory_.see(isShort, tick.now);
    system_.see(isBusy || isShort || isThermallyLimited(tick.thermal), tick.now);
    const PerformanceSampler& sampler = app_->delegate().statusBarController()->sampler();
    expect((sampler.systemState().get() == ComponentState::critical) == system_.isBad(),
           "the system's state changes after its rule's time, and then");
    expect(std::isfinite(stats.cpu) && stats.cpu >= 0 && stats.cpu <= 100, "a share is between 0 and 100",
           std::to_string(stats.cpu));
    lastCPU_.push_back(stats.cpu);
    if (lastCPU_.size() > 3) lastCPU_.pop_front();
    expect(sampler.cpuHistory().get()->size() <= PerformanceSampler::kCPUHistoryLength,
           "the history stays within its bound");
    const ScriptedDispatch& dispatch = machine_.scripted.dispatch;
    expect(const_cast<ScriptedDispatch&>(dispatch).mainLoopQueue().waiting() <= kMostWaiting,
           "few tasks wait on the main queue");
}

void Invariants::published(const SystemSnapshot& s) {
    ++fullTicks;
    expect((s.cpuState == ComponentState::critical) == cpu_.isBad() &&
               (s.memoryState == ComponentState::critical) == memory_.isBad(),
           "the components' states change after their rule's time, and then");
    double sum = 0;
    for (const double cpu : lastCPU_)
        sum += cpu;
    expect(std::abs(s.cpuSustained * static_cast<double>(lastCPU_.size()) - sum) < 1e-6,
           "the sustained load is the mean of the last ticks'", std::to_string(s.cpuSustained));

    for (std::size_t i = 0; i < kBandRules.size(); ++i) {
        const BandRule& rule = kBandRules[i];
        if (rule.flag == nullptr) continue;
        const double value = rule.input(s);
        const bool isRising = rule.direction == BandRule::Direction::rising;
        if (isRising ? value >= rule.thresholdOn : value <= rule.thresholdOn)
            flags_[i] = true;
        else if (isRising ? value <= rule.thresholdOff : value >= rule.thresholdOff)
            flags_[i] = false;
        expect(s.*rule.flag == flags_[i], "a band turns at its own two thresholds alone",
               "band " + std::to_string(i) + " at " + std::to_string(value));
    }

    // The tick of a change counts as seen before it: what comes next is timed from a later one.
    if (impact_ != s.energyImpact) {
        const auto needed = *impact_ < s.energyImpact ? 5s : 10s;
        expect(earliestSinceImpact_ && s.timestamp - *earliestSinceImpact_ >= needed,
               "the impact changes after its rule's time");
        impact_ = s.energyImpact;
        earliestSinceImpact_.reset();
    } else {
        earliestSinceImpact_ = std::min(earliestSinceImpact_.value_or(s.timestamp), s.timestamp);
    }
}

// --- What is to be seen

std::string_view Invariants::nameOf(const ScriptedPopoverWindow& window) {
    const double width = window.frame().size.width;
    if (width == MenuRootView::kWidth) return "main";
    if (width == PreferencesView::kWidth) return "settings";
    if (width == InfoPopoverView::kWidth) return "info";
    return width == WelcomePopoverController::kContentSize.width ? "welcome" : "?";
}

AccessibleNode Invariants::treeOf(ScriptedPopoverWindow& window) {
    window.picture();
    return window.content().accessibleTree();
}

void Invariants::look() {
    if (app_ == nullptr) return;
    StatusBarController& controller = *app_->delegate().statusBarController();
    const ScriptedWindowServer& desktop = machine_.scripted.windowServer;
    expect(machine_.windowServer.items == 1, "there is one status item",
           std::to_string(machine_.windowServer.items));
    if (desktop.hasPanel) {
        expect(desktop.buttonFrame() && desktop.statusItemContent() != nullptr, "the item has its button");
    }

    desktop.statusItemPicture();  // a panel paints it

    std::map<std::string_view, int> shown;
    for (ScriptedPopoverWindow* window : desktop.windows()) {
        ++shown[nameOf(*window)];
        ++trees;
        std::set<std::string> keys;
        const Rect frame{{}, window->frame().size};
        visit(treeOf(*window), [&](const AccessibleNode& node) {
            if (!node.key.empty()) expect(keys.insert(node.key).second, "keys are unique", textOf(node));
            if (!isPressable(node)) return;
            expect(!node.name.empty(), "what can be pressed has a name", node.key);
            expect(node.isFocusable, "the keyboard can come to what can be pressed", textOf(node));
            expect(node.frame.minX() >= frame.minX() - 1 && node.frame.maxX() <= frame.maxX() + 1,
                   "nothing sticks out at the sides", textOf(node));
        });
    }
    expect(shown["main"] <= 1 && shown["info"] <= 1 && shown["welcome"] <= 1, "a popover is shown once");
    expect(!shown.contains("?"), "every window is a known one");

    const ScriptedDispatch& dispatch = machine_.scripted.dispatch;
    if (const_cast<ScriptedDispatch&>(dispatch).mainLoopQueue().waiting() > 0) return;  // it is held
    const bool isVisible = controller.sampler().isUIVisible().get();
    const bool isPinned = controller.pin().isPinned;
    expect(isVisible || shown["main"] == 0, "a dashboard on the screen is fed");
    expect(!isVisible || shown["main"] == 1 || isPinned, "no dashboard is fed that nobody sees");
}

void Invariants::tour(ScriptedPopoverWindow& window) {
    std::set<std::string> wanted;
    visit(treeOf(window), [&](const AccessibleNode& node) {
        if (node.isFocusable && node.isEnabled) wanted.insert(node.key);
    });
    std::set<std::string> reached;
    // Once around, wherever it begins, and past the end to the beginning.
    for (std::size_t i = 0; i <= wanted.size() + 1; ++i) {
        window.content().key({KeyEvent::Key::tab});
        const AccessibleNode tree = treeOf(window);
        const Rect frame{{}, window.frame().size};
        visit(tree, [&](const AccessibleNode& node) {
            if (!node.isFocused) return;
            reached.insert(node.key);
            expect(node.frame.minY() >= frame.minY() - 1 && node.frame.maxY() <= frame.maxY() + 1,
                   "what has the keyboard is to be seen",
                   textOf(node) + ", " + std::to_string(node.frame.maxY()) + " of " +
                       std::to_string(frame.maxY()) + " pt");
        });
    }
    for (const std::string& key : wanted)
        expect(reached.contains(key), "Tab comes to every control", std::string(nameOf(window)) + " " + key);
}

void Invariants::lookAtQuiet(std::uint64_t turns, std::uint64_t seconds) {
    if (app_ == nullptr) return;
    const auto& sampler = app_->delegate().statusBarController()->sampler();
    // A pinned dashboard that has been closed behind the settings is still fed.
    const std::uint64_t each = sampler.isUIVisible().get() ? 2 : 1;
    expect(turns <= each * (seconds + 1) + kSpareTurns, "nothing turns the main loop for nobody",
           std::to_string(turns) + " turns in " + std::to_string(seconds) + " s");
    const ScriptedWindowServer& desktop = machine_.scripted.windowServer;
    const auto button = desktop.buttonFrame();
    if (!button || desktop.statusItemContent() == nullptr) return;
    // A fade begins with the picture that shows it.
    desktop.statusItemPicture();
    SurfaceContent& item = *desktop.statusItemContent();
    item.displayList(button->size, machine_.scripted.time.monotonic() + 1s);
    expect(item.frameRate() == 0, "an item at rest wants no frames");
}

void Invariants::weigh() {
    const auto use = mallinfo2();
    weights_.push_back(static_cast<long long>(use.uordblks + use.hblkhd));
}

std::optional<long long> Invariants::growth() {
    // The least of many days: what keeps the room of a large answer until the next one goes up and down.
    const auto least = [this](std::size_t from, std::size_t to) {
        return *std::min_element(weights_.begin() + static_cast<std::ptrdiff_t>(from),
                                 weights_.begin() + static_cast<std::ptrdiff_t>(to));
    };
    const std::size_t count = weights_.size();
#ifdef __SANITIZE_ADDRESS__
    return std::nullopt;  // the sanitizer keeps the bytes, and tells of leaks itself
#endif
    if (count < 2 * kFewestDays) return std::nullopt;
    const long long grown = least(count * 3 / 4, count) - least(count / 2, count * 3 / 4);
    expect(grown <= kSpareBytes, "the bytes in use do not grow", std::to_string(grown));
    return grown;
}

}  // namespace norvane
