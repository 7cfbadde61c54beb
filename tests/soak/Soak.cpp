#include "Soak.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/scripted/ScriptedPopoverWindow.h"
#include "preferences/DefaultsKeys.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using namespace std::chrono;

// What is remembered of the last things that happened, to be told where an invariant does not hold.
constexpr std::size_t kLately = 25;

void collect(const AccessibleNode& node, std::vector<AccessibleNode>& found) {
    if (node.isEnabled && !node.actions.empty()) found.push_back(node);
    for (const AccessibleNode& child : node.children)
        collect(child, found);
}

}  // namespace

// The user comes by every hour and a half, for half a minute on the average: of a year the popover is open
// for two days. One visit in sixteen pins it and leaves it for some minutes; in one of sixteen every frame is
// painted. Of the machine's time a third is sleep.
const Soak::Habit Soak::kHabits[] = {
    {90min, &Soak::comeBy},        {5min, &Soak::changeMachine}, {20min, &Soak::strike},
    {2h, &Soak::changePort},       {3h, &Soak::stall},           {8h, &Soak::suspend},
    {48h, &Soak::stepClock},       {36h, &Soak::changePanel},    {12h, &Soak::changeLook},
    {6h, &Soak::changePreference}, {24h * 5, &Soak::restart},
};

Soak::Soak(std::uint64_t seed, int days) : seed_(seed), days_(days), chance_(seed) {
    begin_ = heldUntil_ = machine_.scripted.time.monotonic();
    for (const Habit& habit : kHabits)
        keep(habit);
    launch();
}

void Soak::later(Milliseconds delay, std::function<void()> act) {
    agenda_.emplace(machine_.scripted.time.monotonic() + delay, std::move(act));
}

void Soak::keep(const Habit& habit) {
    later(chance_.about(habit.mean), [this, &habit] {
        (this->*habit.act)();
        keep(habit);
    });
}

void Soak::note(const std::string& what) {
    const auto since = duration_cast<milliseconds>(machine_.scripted.time.monotonic() - begin_);
    lately_.push_back(std::to_string(since.count()) + " ms: " + what);
    if (lately_.size() > kLately) lately_.pop_front();
    ++acts_;
}

void Soak::advance(nanoseconds by) {
    const auto& queue = machine_.scripted.dispatch.mainLoopQueue();
    // An open dashboard is looked at in every second of its time.
    while (by > 0ns && !invariants_.broken()) {
        const bool isQuiet = desktop().windows().empty() && !isHeld();
        const nanoseconds step = isQuiet ? by : std::min<nanoseconds>(by, 1s);
        const std::uint64_t before = queue.ran();
        machine_.scripted.advance(step);
        if (isQuiet && desktop().windows().empty()) {
            invariants_.lookAtQuiet(queue.ran() - before,
                                    static_cast<std::uint64_t>(duration_cast<seconds>(step).count()));
        }
        invariants_.look();
        by -= step;
    }
}

bool Soak::run() {
    for (day_ = 1; day_ <= days_ && !invariants_.broken(); ++day_) {
        // Asleep for a third of it.
        const MonotonicInstant evening = machine_.scripted.time.monotonic() + 16h;
        while (!invariants_.broken() && !agenda_.empty() && agenda_.begin()->first < evening) {
            const auto entry = agenda_.extract(agenda_.begin());
            advance(entry.key() - machine_.scripted.time.monotonic());
            entry.mapped()();
            machine_.scripted.settle();
            invariants_.look();
            machine_.forget();
        }
        advance(evening - machine_.scripted.time.monotonic());
        if (!invariants_.broken()) this->evening();
        machine_.scripted.suspend(8h);
    }
    const auto growth = invariants_.growth();
    const std::string grown =
        growth ? "grown by " + std::to_string(*growth) + " bytes in the last half" : "growth not judged";
    std::printf(
        "soak: seed %llu, %d days, %llu ticks, %llu of them in full, %llu visits, %llu events, %llu faults, "
        "%llu alerts, %llu trees, %s: %s\n",
        static_cast<unsigned long long>(seed_), day_ - 1, static_cast<unsigned long long>(invariants_.ticks),
        static_cast<unsigned long long>(invariants_.fullTicks), static_cast<unsigned long long>(visits_),
        static_cast<unsigned long long>(acts_), static_cast<unsigned long long>(machine_.strikes),
        static_cast<unsigned long long>(invariants_.alerts),
        static_cast<unsigned long long>(invariants_.trees), grown.c_str(),
        invariants_.broken() ? "BROKEN" : "all invariants hold");
    if (!invariants_.broken()) return true;
    std::printf("Broken: %s\nOn day %d; lately:\n", invariants_.broken()->c_str(), day_ - 1);
    for (const std::string& line : lately_)
        std::printf("    %s\n", line.c_str());
    std::printf("Again: norvane_soak --seed %llu --days %d\n", static_cast<unsigned long long>(seed_), days_);
    return false;
}

// --- The machine

void Soak::changeMachine() {
    machine_.change();
}

void Soak::strike() {
    note("fails: " + machine_.strike());
    later(chance_.about(3min), [this] { machine_.mend(); });
}

// What no tick asks fails or is late, for an hour or so.
void Soak::changePort() {
    ScriptedMachine& scripted = machine_.scripted;
    note("another answer of a port");
    switch (chance_.below(6)) {
        case 0:
            scripted.loginItem.registerError.always("refused");
            scripted.loginItem.delay = chance_.about(5s);
            later(chance_.about(1h),
                  [this] { machine_.scripted.loginItem.registerError.always(std::nullopt); });
            return;
        case 1:
            scripted.loginItem.hold();
            later(chance_.about(20s), [this] { machine_.scripted.loginItem.letGo(); });
            return;
        case 2:
            scripted.workspace.ejectionTime = chance_.about(20s);
            if (chance_.oneIn(2))
                scripted.workspace.ejectionErrors["/media/ada/STICK0"] = "target is busy";
            else
                scripted.workspace.ejectionErrors.clear();
            return;
        case 3:
            scripted.userNotificationCenter.error.always("no server\n");
            later(chance_.about(1h),
                  [this] { machine_.scripted.userNotificationCenter.error.always(std::nullopt); });
            return;
        case 4:
            scripted.userNotificationCenter.status.always(
                chance_.oneIn(2) ? NotificationAuthorization::denied : NotificationAuthorization::authorized);
            return;
        default:
            scripted.loginItem.currentStatus = static_cast<int>(chance_.below(4));
    }
}

// A queue gets no processor for up to twenty seconds.
void Soak::stall() {
    ScriptedDispatch& dispatch = machine_.scripted.dispatch;
    ScriptedLoop::Queue* const queues[] = {&dispatch.mainLoopQueue(), &dispatch.backgroundLoopQueue(),
                                           dispatch.serialLoopQueue("Norvane.sampler")};
    const std::size_t which = chance_.below(std::size(queues));
    // The user sees a window that does not answer, and waits.
    if (isVisited_ || isHeld() || app_ == std::nullopt) return;
    note("queue " + std::to_string(which) + " is held");
    const Milliseconds length(chance_.below(20'000));
    if (which == 0) heldUntil_ = machine_.scripted.time.monotonic() + length;
    queues[which]->hold();
    later(length, [this, queue = queues[which], isMain = which == 0] {
        queue->letGo();
        if (isMain) heldUntil_ = machine_.scripted.time.monotonic();
    });
}

void Soak::suspend() {
    note("sleeps");
    machine_.scripted.suspend(chance_.about(1h));
}

void Soak::stepClock() {
    note("the clock is set");
    ScriptedTime& time = machine_.scripted.time;
    const nanoseconds step = chance_.oneIn(4) ? nanoseconds(24h * 3) : nanoseconds(chance_.about(1min));
    time.stepWallClock(chance_.oneIn(2) ? step : -step);
    // The process was stopped for a while.
    if (chance_.oneIn(4)) time.stepMonotonicClock(chance_.about(30s));
}

void Soak::changePanel() {
    note("the panel goes");
    desktop().hasPanel = false;
    later(chance_.about(20s), [this] {
        desktop().panelKnowsPresses = !chance_.oneIn(3);
        desktop().statusItemRightMargin = static_cast<double>(chance_.below(3) * 200);
        constexpr std::array kScreens{Size{1600, 1000}, Size{1024, 600}, Size{3840, 2160}};
        desktop().screen = Rect{{}, chance_.oneOf(kScreens)};
        desktop().startPanel();
        note("a panel comes");
    });
}

void Soak::changeLook() {
    ScriptedAppearance& appearance = machine_.scripted.appearance;
    note("another look");
    switch (chance_.below(3)) {
        case 0:
            return appearance.setDark(!appearance.isDark());
        case 1:
            return appearance.setReducesMotion(!appearance.reducesMotion());
        default:
            return appearance.setAccentColor(chance_.oneIn(2) ? std::nullopt
                                                              : std::optional(Color{0.2, 0.4, 0.9, 1}));
    }
}

// Somebody edits the file, well or badly.
void Soak::changePreference() {
    using namespace defaultskey;
    constexpr std::array kKeys{
        kTemperatureUnit,          kMenuBarIconMode,         kMenuBarIconMode,
        kIsSmartAutoExpandEnabled, kInsightVerbosity,        kSustainedLoadNotificationsEnabled,
        kStorageAlertEnabled,      kStorageAlertThresholdGB, kBatteryAlertEnabled,
        kBatteryAlertThresholdPct, kLastViewedPod,           kHasSeenWelcome};
    const std::array<DefaultsValue, 12> values{true,
                                               true,
                                               true,
                                               false,
                                               0.0,
                                               25.0,
                                               1e300,
                                               std::string("stats"),
                                               std::string("on"),
                                               std::string("concise"),
                                               std::string("fahrenheit"),
                                               std::string("\xff no word at all")};
    const std::string_view key = chance_.oneOf(kKeys);
    note("edited: " + std::string(key));
    machine_.scripted.userDefaults.changeFromOutside(key, chance_.oneOf(values));
}

// --- The application

void Soak::launch() {
    app_.emplace(machine_.platform());
    app_->launch();
    invariants_.follow(*app_);
    machine_.scripted.settle();
}

void Soak::quit() {
    invariants_.leave();
    app_.reset();
    machine_.scripted.application.terminated = false;
}

// Only in the first third: what one application gathers over the months would not be seen otherwise.
bool Soak::mayRestart() const {
    return day_ * 3 <= days_ && !isHeld();
}

void Soak::restart() {
    if (!mayRestart() || isVisited_ || !app_) return;
    note("ends and starts again");
    quit();
    later(chance_.about(1min), [this] {
        if (!app_) launch();
    });
}

// --- The user

void Soak::comeBy() {
    if (isVisited_ || isHeld() || !app_) return;
    ++visits_;
    isVisited_ = true;
    desktop().runsFrames = chance_.oneIn(16);
    note(desktop().runsFrames ? "visit, with frames" : "visit");
    desktop().clickStatusItem();
    visitFor(3 + chance_.below(24));
}

void Soak::visitFor(std::uint64_t steps) {
    later(chance_.about(1500ms), [this, steps] {
        if (!app_) {
            isVisited_ = false;
            return;
        }
        if (steps > 0) {
            doSomething();
            machine_.scripted.settle();
            if (machine_.scripted.application.terminated) {
                note("quits");
                machine_.scripted.application.terminated = false;
                // In the later months the user clicks beside it.
                if (mayRestart()) {
                    quit();
                    later(chance_.about(1min), [this] {
                        if (!app_) launch();
                    });
                }
            }
            return visitFor(steps - 1);
        }
        if (chance_.oneIn(16)) {
            note("leaves it pinned");
            pin(true);
            desktop().runsFrames = false;
            later(chance_.about(8min), [this] { closeAll(); });
            return;
        }
        closeAll();
    });
}

void Soak::pointAtSomething(ScriptedPopoverWindow& window) {
    std::vector<AccessibleNode> nodes;
    collect(Invariants::treeOf(window), nodes);
    if (nodes.empty()) return;
    const AccessibleNode& node = chance_.oneOf(nodes);
    if (chance_.oneIn(2)) {
        const std::string action = chance_.oneOf(node.actions);
        note("does \"" + action + "\" to \"" + node.name + "\"");
        invariants_.expect(window.content().perform(node.key, action), "what is offered can be done",
                           node.name);
        return;
    }
    note("clicks on \"" + node.name + "\"");
    desktop().click({window.frame().minX() + node.frame.midX(), window.frame().minY() + node.frame.midY()});
}

void Soak::doSomething() {
    constexpr std::array kKeys{KeyEvent::Key::tab,    KeyEvent::Key::tab,       KeyEvent::Key::tab,
                               KeyEvent::Key::up,     KeyEvent::Key::down,      KeyEvent::Key::left,
                               KeyEvent::Key::home,   KeyEvent::Key::end,       KeyEvent::Key::right,
                               KeyEvent::Key::space,  KeyEvent::Key::returnKey, KeyEvent::Key::backTab,
                               KeyEvent::Key::pageUp, KeyEvent::Key::pageDown,  KeyEvent::Key::escape};
    const auto& windows = desktop().windows();
    ScriptedPopoverWindow* const window = windows.empty() ? nullptr : chance_.oneOf(windows);
    const Point inside = window == nullptr ? Point{}
                                           : Point{static_cast<double>(chance_.below(520)),
                                                   static_cast<double>(chance_.below(600))};
    switch (chance_.below(24)) {
        case 0:
            note("clicks on the item");
            return desktop().clickStatusItem();
        case 1:
            note("clicks elsewhere");
            return desktop().click({10, desktop().screen->maxY() - 10});
        case 2:
            note("turns to another window");
            return desktop().focusElsewhere();
        case 3: {
            const auto& menu = desktop().contextMenu();
            if (menu.empty() || !desktop().hasPanel) return;
            const auto action = chance_.oneOf(menu).action;  // it may end the menu
            note("takes from the menu");
            return action();
        }
        case 4:
            note("starts it a second time");
            return machine_.scripted.application.reopen();
        case 5:
            if (window == nullptr) return;
            note("goes around with Tab");
            advance(2s);  // until nothing moves
            if (!desktop().windows().empty()) invariants_.tour(*desktop().windows().back());
            return;
        case 6:
        case 7:
            if (window == nullptr) return;
            note("scrolls");
            return window->content().pointer(
                {PointerEvent::Kind::scroll, inside, {0, static_cast<double>(chance_.below(400)) - 200}});
        case 8:
        case 9:
            if (window == nullptr) return;
            note("moves the pointer");
            return window->content().pointer({PointerEvent::Kind::move, inside});
        case 10:
        case 11:
        case 12:
        case 13:
            note("presses a key");
            return desktop().press(chance_.oneOf(kKeys));
        default:
            if (window == nullptr) return desktop().clickStatusItem();
            return pointAtSomething(*window);
    }
}

// By its button, which is there while the dashboard is.
void Soak::pin(bool isWanted) {
    if (app_->delegate().statusBarController()->pin().isPinned == isWanted) return;
    for (ScriptedPopoverWindow* window : desktop().windows()) {
        if (Invariants::nameOf(*window) != "main") continue;
        std::vector<AccessibleNode> nodes;
        collect(Invariants::treeOf(*window), nodes);
        for (const AccessibleNode& node : nodes)
            if (node.name == "Pin") window->content().perform(node.key, "press");
        break;
    }
    machine_.scripted.settle();
}

// In some way that people have, and at last by clicks elsewhere.
void Soak::closeAll() {
    isVisited_ = false;
    desktop().runsFrames = false;
    if (!app_ || isHeld()) {
        later(1min, [this] { closeAll(); });
        return;
    }
    for (int i = 0; i < 8 && !desktop().windows().empty(); ++i) {
        pin(false);
        switch (i < 3 ? chance_.below(4) : 3) {
            case 0:
                desktop().press(KeyEvent::Key::escape);
                break;
            case 1:
                desktop().clickStatusItem();
                break;
            case 2:
                desktop().focusElsewhere();
                break;
            default:
                desktop().click({10, desktop().screen->maxY() - 10});
        }
        machine_.scripted.settle();
    }
    invariants_.expect(desktop().windows().empty(), "every popover can be closed");
    // One may come back at its other anchor, or with a panel.
    later(1500ms, [this] {
        if (!isVisited_ && !desktop().windows().empty()) closeAll();
    });
}

// The same at the end of each day: all works again, the dashboard is opened until everything has been read,
// and closed until everything has been let go of. What is in use then is comparable.
void Soak::evening() {
    using namespace defaultskey;
    note("evening");
    if (isHeld()) heldUntil_ = machine_.scripted.time.monotonic();
    ScriptedDispatch& dispatch = machine_.scripted.dispatch;
    dispatch.mainLoopQueue().letGo();
    dispatch.backgroundLoopQueue().letGo();
    if (auto* const sampler = dispatch.serialLoopQueue("Norvane.sampler")) sampler->letGo();
    machine_.calmDown();
    agenda_.clear();
    for (const Habit& habit : kHabits)
        keep(habit);
    if (!app_) launch();
    for (const std::string_view key :
         {kTemperatureUnit, kMenuBarIconMode, kIsSmartAutoExpandEnabled, kInsightVerbosity,
          kSustainedLoadNotificationsEnabled, kStorageAlertEnabled, kStorageAlertThresholdGB,
          kBatteryAlertEnabled, kBatteryAlertThresholdPct}) {
        machine_.scripted.userDefaults.removeObjectForKey(key);
    }
    machine_.scripted.userDefaults.changeFromOutside(kHasSeenWelcome, true);
    machine_.scripted.appearance.setDark(true);
    machine_.scripted.appearance.setReducesMotion(false);
    machine_.scripted.appearance.setAccentColor(std::nullopt);
    desktop().screen = Rect{{}, {1600, 1000}};
    desktop().panelKnowsPresses = true;
    desktop().startPanel();
    advance(3s);
    closeAll();
    advance(3s);
    closeAll();
    desktop().clickStatusItem();
    advance(12s);
    invariants_.expect(desktop().windows().size() == 1, "a click opens the dashboard");
    // Once everything that can fail does, whatever chance has left out.
    if (day_ == (days_ + 1) / 2) {
        machine_.eachFault([this](bool isSlow) { advance(isSlow ? 31s : 4s); });
        advance(12s);
    }
    pin(false);
    desktop().clickStatusItem();
    advance(20s);
    invariants_.expect(desktop().windows().empty(), "another one closes it");
    machine_.forget();
    agenda_.clear();
    lately_.clear();
    invariants_.weigh();
    for (const Habit& habit : kHabits)
        keep(habit);
    for (const std::string_view key :
         {kSustainedLoadNotificationsEnabled, kStorageAlertEnabled, kBatteryAlertEnabled})
        machine_.scripted.userDefaults.changeFromOutside(key, true);
}

}  // namespace norvane
