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
std::vector<std::string> told(ShownPanel& panel) {
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
    EXPECT_EQ(told(panel_), all);
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

TEST_F(PreferencesViewTest, EverySwitchWritesItsPreferenceByPointerAndByAction) {
    struct Case {
        const char* row;
        bool (PreferencesStore::*value)() const;
    };
    panel_.appear();
    for (const Case& c : {Case{"Smart Auto-Expand", &PreferencesStore::isSmartAutoExpandEnabled},
                          {kSustained, &PreferencesStore::sustainedLoadNotificationsEnabled},
                          {kStorage, &PreferencesStore::storageAlertEnabled},
                          {kBattery, &PreferencesStore::batteryAlertEnabled}}) {
        const bool before = (prefs_.*c.value)();
        EXPECT_EQ(row(c.row).isOn, before) << c.row;
        flip(c.row);
        EXPECT_EQ((prefs_.*c.value)(), !before) << c.row;
        EXPECT_EQ(row(c.row).isOn, !before) << c.row;
        panel_.perform(row(c.row), "press");
        EXPECT_EQ((prefs_.*c.value)(), before) << c.row;
    }
}

TEST_F(PreferencesViewTest, EveryChoiceWritesItsPreferenceByPointerAndByAction) {
    struct Case {
        const char* segment;
        std::string_view key;
        const char* stored;
    };
    panel_.appear();
    for (const bool byAction : {false, true}) {
        for (const Case& c : {Case{"°F", defaultskey::kTemperatureUnit, "fahrenheit"},
                              {"°C", defaultskey::kTemperatureUnit, "celsius"},
                              {"Dynamic", defaultskey::kMenuBarIconMode, "on"},
                              {"Stats", defaultskey::kMenuBarIconMode, "stats"},
                              {"Concise", defaultskey::kInsightVerbosity, "concise"},
                              {"Detailed", defaultskey::kInsightVerbosity, "detailed"}}) {
            const AccessibleNode segment = panel_.node(c.segment, Role::radioButton);
            if (segment.isOn != true) {
                if (byAction) {
                    panel_.perform(segment, "press");
                } else {
                    panel_.click(segment);
                }
                ASSERT_EQ(machine_.userDefaults.objectForKey(c.key), DefaultsValue(std::string(c.stored)))
                    << c.segment;
            }
            EXPECT_EQ(panel_.node(c.segment, Role::radioButton).isOn, true) << c.segment;
        }
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
        c.set(c.most - 5);
        panel_.settle();
        step(c.name, true);
        EXPECT_EQ(c.get(), c.most) << c.name;
        EXPECT_EQ(stepper(c.name).actions, std::vector<std::string>{"decrement"}) << "the end";
        step(c.name, true);
        EXPECT_EQ(c.get(), c.most) << c.name;
        panel_.perform(stepper(c.name), "decrement");
        EXPECT_EQ(c.get(), c.most - 5) << c.name;
        c.set(c.least + 5);
        panel_.settle();
        step(c.name, false);
        EXPECT_EQ(c.get(), c.least) << c.name;
        EXPECT_EQ(stepper(c.name).actions, std::vector<std::string>{"increment"}) << "the other end";
        step(c.name, false);
        EXPECT_EQ(c.get(), c.least) << c.name;
        panel_.perform(stepper(c.name), "increment");
        EXPECT_EQ(c.get(), c.least + 5) << c.name;
    }
}

TEST_F(PreferencesViewTest, EverySwitchGlidesWhereItGoes) {
    panel_.appear();
    for (const char* name : {kLaunch, "Smart Auto-Expand", kSustained, kStorage, kBattery}) {
        // The thumbs, in the rows' order: the only filled circles of 14 points.
        const auto thumbs = [&] {
            std::vector<double> all;
            const std::function<void(const std::vector<DisplayItem>&)> collect = [&](const auto& items) {
                for (const DisplayItem* item : flatItems(items)) {
                    if (const auto* group = std::get_if<DrawGroup>(&item->command)) collect(group->items);
                    const auto* fill = std::get_if<FillShape>(&item->command);
                    const auto* circle = fill != nullptr ? std::get_if<RoundedRect>(&fill->shape) : nullptr;
                    if (circle != nullptr && circle->rect.size == Size{14, 14})
                        all.push_back(circle->rect.midX());
                }
            };
            collect(panel_.picture().items);
            return all;
        };
        const auto before = thumbs();
        ASSERT_EQ(before.size(), 5U) << name;
        panel_.click(row(name));
        EXPECT_EQ(thumbs(), before) << name << " sets out from where it was";
        machine_.advance(2s);
        EXPECT_NE(thumbs(), before) << name << " has arrived";
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
    for (const int status : {0, 2, 3, 1, -1}) {  // only one of them means that it is on
        machine_.loginItem.currentStatus = status;
        look();
        EXPECT_EQ(row(kLaunch).isOn, status == 1) << status;
    }
    EXPECT_EQ(machine_.loginItem.calls,
              (std::vector<Call>{Call::status, Call::unregisterItem, Call::registerItem, Call::status,
                                 Call::status, Call::status, Call::status, Call::status}));
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
        const char* name;
        NotificationAuthorization status;
        bool isGranted;
        std::uint64_t requests;
        bool staysOn;
    };
    struct Row {
        const char* name;
        bool (PreferencesStore::*value)() const;
        void (PreferencesStore::*set)(bool);
    };
    panel_.appear();
    auto& center = machine_.userNotificationCenter;
    for (const Row& r :
         {Row{kSustained, &PreferencesStore::sustainedLoadNotificationsEnabled,
              &PreferencesStore::setSustainedLoadNotificationsEnabled},
          {kStorage, &PreferencesStore::storageAlertEnabled, &PreferencesStore::setStorageAlertEnabled},
          {kBattery, &PreferencesStore::batteryAlertEnabled, &PreferencesStore::setBatteryAlertEnabled}}) {
        for (const Case& c :
             {Case{"never asked, refused", NotificationAuthorization::notDetermined, false, 1, false},
              {"never asked, granted", NotificationAuthorization::notDetermined, true, 1, true},
              {"refused before", NotificationAuthorization::denied, false, 0, true},
              {"granted before", NotificationAuthorization::authorized, false, 0, true}}) {
            (prefs_.*r.set)(false);
            panel_.settle();
            center.status.always(c.status);
            center.isGranted.always(c.isGranted);
            const auto requests = center.isGranted.asked();
            const auto statuses = center.status.asked();
            flip(r.name);
            EXPECT_EQ((prefs_.*r.value)(), c.staysOn) << r.name << ", " << c.name;
            EXPECT_EQ(row(r.name).isOn, c.staysOn) << r.name << ", " << c.name;
            EXPECT_EQ(center.isGranted.asked() - requests, c.requests) << r.name << ", " << c.name;
            EXPECT_EQ(center.status.asked() - statuses, 1U) << r.name << ", " << c.name;
            if (!c.staysOn) continue;
            flip(r.name);
            EXPECT_FALSE((prefs_.*r.value)()) << r.name << ", " << c.name;
            EXPECT_EQ(center.status.asked() - statuses, 1U) << "turning it off asks nothing";
        }
    }
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
