#include "dashboard/PreferencesView.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "preferences/DefaultsKeys.h"
#include "ShownPanel.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Role = AccessibleRole;
using Call = ScriptedLoginItem::Call;

constexpr const char* kLaunch = "Launch Norvane at login";
constexpr const char* kSustained = "Enable Sustained load Notifications";
constexpr const char* kStorage = "Notify on Low Storage";
constexpr const char* kBattery = "Notify on Low Battery";

class PreferencesViewTest : public testing::Test {
 protected:
    AccessibleNode row(const char* name) { return panel_.node(name, Role::toggle); }
    AccessibleNode stepper(const char* name) { return panel_.node(name, Role::spinButton); }
    // Presses the row, lets the answers come and everything arrive.
    void flip(const char* name) {
        panel_.click(row(name));
        machine_.advance(1s);
        panel_.settle();
    }
    // The one side of the stepper or the other.
    void step(const char* name, bool isUp) {
        const Rect frame = stepper(name).frame;
        panel_.click({isUp ? frame.maxX() - 5 : frame.minX() + 5, frame.midY()});
    }
    void look() {
        view_.content().disappear();
        panel_.appear();
    }

    ScriptedMachine machine_;
    PreferencesStore prefs_{machine_.userDefaults};
    PreferencesView view_{machine_.platform(), prefs_};
    ShownPanel panel_{machine_, view_.content()};
};

// "[x] Smart Auto-Expand", "(o) Concise", "Notify on Low Storage = 20 GB"
std::vector<std::string> rowsOf(ShownPanel& panel) {
    std::vector<std::string> all;
    for (const AccessibleNode& node : panel.nodes()) {
        const bool isOn = node.isOn.value_or(false);
        switch (node.role) {
            case Role::heading:
                all.push_back("# " + node.name);
                break;
            case Role::toggle:
                all.push_back((isOn ? "[x] " : "[ ] ") + node.name);
                break;
            case Role::spinButton:
                all.push_back(node.name + " = " + node.value);
                break;
            case Role::group:
                all.push_back(node.name + ":");
                break;
            case Role::radioButton:
                all.push_back((isOn ? "(o) " : "( ) ") + node.name);
                break;
            case Role::separator:
                break;
            default:
                all.push_back("? " + node.name);
                break;
        }
    }
    return all;
}

TEST_F(PreferencesViewTest, TellsItsRowsInTheirOrder) {
    prefs_.setIsSmartAutoExpandEnabled(true);
    prefs_.setSustainedLoadNotificationsEnabled(false);
    prefs_.setStorageAlertEnabled(true);
    prefs_.setStorageAlertThresholdGB(42.9);
    prefs_.setBatteryAlertEnabled(true);
    prefs_.setBatteryAlertThresholdPct(15);
    prefs_.setTemperatureUnit(TemperatureUnit::fahrenheit);
    prefs_.setMenuBarIconMode(MenuBarIconMode::on);
    prefs_.setInsightVerbosity(InsightVerbosity::concise);
    panel_.appear();
    const std::vector<std::string> all{"# Settings",
                                       "[ ] Launch Norvane at login",
                                       "[x] Smart Auto-Expand",
                                       "[ ] Enable Sustained load Notifications",
                                       "[x] Notify on Low Storage",
                                       "Notify on Low Storage = 42 GB",
                                       "[x] Notify on Low Battery",
                                       "Notify on Low Battery = 15%",
                                       "Temperature unit:",
                                       "( ) °C",
                                       "(o) °F",
                                       "Menu Bar Style:",
                                       "(o) Dynamic",
                                       "( ) Stats",
                                       "Insight Verbosity:",
                                       "(o) Concise",
                                       "( ) Detailed"};
    EXPECT_EQ(rowsOf(panel_), all);
    EXPECT_EQ(panel_.size().width, 360);
    const double tall = panel_.size().height;
    prefs_.setStorageAlertEnabled(false);
    prefs_.setBatteryAlertEnabled(false);
    panel_.settle();
    EXPECT_EQ(stepper(kStorage).name, "") << "changed elsewhere, seen here";
    EXPECT_EQ(stepper(kBattery).name, "");
    EXPECT_LT(panel_.size().height, tall);
    EXPECT_EQ(prefs_.storageAlertThresholdGB(), 42.9) << "out of sight, not forgotten";
}

TEST_F(PreferencesViewTest, EverySwitchAndChoiceWritesItsPreferenceByPointerAndByAction) {
    panel_.appear();
    struct Switch {
        const char* row;
        bool (PreferencesStore::*value)() const;
    };
    for (const Switch& s : {Switch{"Smart Auto-Expand", &PreferencesStore::isSmartAutoExpandEnabled},
                            {kSustained, &PreferencesStore::sustainedLoadNotificationsEnabled},
                            {kStorage, &PreferencesStore::storageAlertEnabled},
                            {kBattery, &PreferencesStore::batteryAlertEnabled}}) {
        const bool before = (prefs_.*s.value)();
        EXPECT_EQ(row(s.row).isOn, before) << s.row;
        flip(s.row);
        EXPECT_EQ((prefs_.*s.value)(), !before) << s.row;
        EXPECT_EQ(row(s.row).isOn, !before) << s.row;
        panel_.perform(row(s.row), "press");
        EXPECT_EQ((prefs_.*s.value)(), before) << s.row;
    }
    struct Choice {
        const char* segment;
        std::string_view key;
        const char* stored;
    };
    for (const Choice& c : {Choice{"°F", defaultskey::kTemperatureUnit, "fahrenheit"},
                            {"°C", defaultskey::kTemperatureUnit, "celsius"},
                            {"Dynamic", defaultskey::kMenuBarIconMode, "on"},
                            {"Stats", defaultskey::kMenuBarIconMode, "stats"},
                            {"Concise", defaultskey::kInsightVerbosity, "concise"},
                            {"Detailed", defaultskey::kInsightVerbosity, "detailed"}}) {
        panel_.click(panel_.node(c.segment, Role::radioButton));
        EXPECT_EQ(machine_.userDefaults.objectForKey(c.key), DefaultsValue(std::string(c.stored)));
        EXPECT_EQ(panel_.node(c.segment, Role::radioButton).isOn, true) << c.segment;
    }
}

TEST_F(PreferencesViewTest, SteppersGoInFivesToTheirEnds) {
    prefs_.setStorageAlertEnabled(true);
    prefs_.setBatteryAlertEnabled(true);
    panel_.appear();
    struct Case {
        const char* name;
        std::function<void(double)> set;
        std::function<double()> get;
        double least, most;
    };
    for (const Case& c : {Case{kStorage, [&](double value) { prefs_.setStorageAlertThresholdGB(value); },
                               [&] { return prefs_.storageAlertThresholdGB(); }, 10, 200},
                          Case{kBattery, [&](double value) { prefs_.setBatteryAlertThresholdPct(value); },
                               [&] { return prefs_.batteryAlertThresholdPct(); }, 5, 50}}) {
        for (const bool isUp : {true, false}) {
            const double end = isUp ? c.most : c.least;
            const double before = isUp ? end - 5 : end + 5;
            const char* const back = isUp ? "decrement" : "increment";
            c.set(before);
            panel_.settle();
            for (int i = 0; i < 2; ++i) {
                step(c.name, isUp);
                EXPECT_EQ(c.get(), end) << c.name;
                EXPECT_EQ(stepper(c.name).actions, std::vector<std::string>{back}) << c.name;
            }
            panel_.perform(stepper(c.name), back);
            EXPECT_EQ(c.get(), before) << c.name;
        }
    }
}

TEST_F(PreferencesViewTest, TheLoginItemIsReadAtEachLookAndRegisteredAndUnregistered) {
    machine_.loginItem.currentStatus = LoginItem::kEnabled;
    panel_.appear();
    EXPECT_EQ(row(kLaunch).isOn, true);
    flip(kLaunch);
    EXPECT_EQ(machine_.loginItem.currentStatus, LoginItem::kNotRegistered);
    EXPECT_EQ(row(kLaunch).isOn, false);
    panel_.perform(row(kLaunch), "press");
    EXPECT_EQ(machine_.loginItem.currentStatus, LoginItem::kEnabled);
    for (const int status : {2, 1, -1}) {  // only one of them means that it is on
        machine_.loginItem.currentStatus = status;
        look();
        EXPECT_EQ(row(kLaunch).isOn, status == 1) << status;
    }
    EXPECT_EQ(machine_.loginItem.calls,
              (std::vector<Call>{Call::status, Call::unregisterItem, Call::registerItem, Call::status,
                                 Call::status, Call::status}));
    EXPECT_TRUE(machine_.standardOutput.lines.empty());
    EXPECT_TRUE(machine_.userDefaults.written.empty()) << "it is none of the preferences";
}

TEST_F(PreferencesViewTest, AFailingLoginItemIsOneLineAndMovesNothingBack) {
    panel_.appear();
    machine_.loginItem.registerError.always("no room left");
    flip(kLaunch);
    EXPECT_EQ(machine_.standardOutput.lines, std::vector<std::string>{"Launch at login error: no room left"});
    EXPECT_EQ(row(kLaunch).isOn, true);
    look();
    EXPECT_EQ(row(kLaunch).isOn, false) << "the next look tells how it is";
    machine_.loginItem.currentStatus = LoginItem::kEnabled;
    machine_.loginItem.unregisterError.always("");
    look();
    flip(kLaunch);
    EXPECT_EQ(machine_.standardOutput.lines.back(), "Launch at login error: ");
    EXPECT_EQ(row(kLaunch).isOn, false);
}

TEST_F(PreferencesViewTest, AnAlertThatIsTurnedOnAsksWhoWasNeverAsked) {
    struct Case {
        NotificationAuthorization status;
        bool isGranted;
        std::uint64_t requests;
        bool staysOn;
    };
    constexpr auto kNeverAsked = NotificationAuthorization::notDetermined;
    auto& center = machine_.userNotificationCenter;
    panel_.appear();
    for (const char* const name : {kSustained, kStorage, kBattery}) {
        for (const Case& c : {Case{kNeverAsked, false, 1, false},
                              {kNeverAsked, true, 1, true},
                              {NotificationAuthorization::denied, false, 0, true},
                              {NotificationAuthorization::authorized, false, 0, true}}) {
            center.status.always(c.status);
            center.isGranted.always(c.isGranted);
            const auto requests = center.isGranted.asked();
            const auto statuses = center.status.asked();
            flip(name);
            EXPECT_EQ(row(name).isOn, c.staysOn) << name << ' ' << static_cast<int>(c.status);
            EXPECT_EQ(center.isGranted.asked() - requests, c.requests) << name;
            if (c.staysOn) flip(name);
            EXPECT_EQ(row(name).isOn, false) << name;
            EXPECT_EQ(center.status.asked() - statuses, 1U) << "turning it off asks nothing";
        }
    }
    EXPECT_FALSE(prefs_.batteryAlertEnabled());
    EXPECT_TRUE(machine_.standardOutput.lines.empty());
}

TEST(PreferencesViewEnd, AnswersThatComeAfterItsEndAreNobodys) {
    ScriptedMachine machine;
    PreferencesStore prefs(machine.userDefaults);
    {
        PreferencesView view(machine.platform(), prefs);
        ShownPanel panel(machine, view.content());
        panel.appear();
        machine.userNotificationCenter.status.always(NotificationAuthorization::notDetermined);
        machine.userNotificationCenter.isGranted.always(false);
        machine.loginItem.registerError.always("too late");
        machine.loginItem.hold();
        machine.dispatch.backgroundLoopQueue().hold();
        panel.perform(panel.node(kLaunch, Role::toggle), "press");
        panel.perform(panel.node(kStorage, Role::toggle), "press");
        view.content().disappear();
        panel.appear();
    }
    machine.loginItem.letGo();
    machine.dispatch.backgroundLoopQueue().letGo();
    machine.advance(1s);
    EXPECT_TRUE(prefs.storageAlertEnabled()) << "the panel that would have turned it off is gone";
    EXPECT_EQ(machine.standardOutput.lines, std::vector<std::string>{"Launch at login error: too late"});
}

}  // namespace
}  // namespace norvane
