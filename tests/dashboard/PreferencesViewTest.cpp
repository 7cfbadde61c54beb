#include "dashboard/PreferencesView.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "preferences/DefaultsKeys.h"
#include "ShownPanel.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using Role = AccessibleRole;
using Rows = std::vector<std::string>;

constexpr const char* kLaunch = "Launch Norvane at login";
constexpr const char* kSustained = "Enable Sustained load Notifications";
constexpr const char* kStorage = "Notify on Low Storage";
constexpr const char* kBattery = "Notify on Low Battery";

class PreferencesViewTest : public testing::Test {
 protected:
    AccessibleNode row(const char* name) { return panel_->node(name, Role::toggle); }
    // Presses the row, lets the answers come and everything arrive.
    void flip(const char* name) {
        panel_->click(row(name));
        panel_->advance(1s);
    }
    void look() {
        view_->content().disappear();
        panel_->appear();
    }

    ScriptedMachine machine_;
    PreferencesStore prefs_{machine_.userDefaults};
    std::optional<PreferencesView> view_{std::in_place, machine_.platform(), prefs_};
    std::optional<ShownPanel> panel_{std::in_place, machine_, view_->content()};
};

TEST_F(PreferencesViewTest, WhatIsSwitchedChosenOrSteppedIsWrittenAndShown) {
    machine_.userNotificationCenter.status.always(NotificationAuthorization::authorized);
    panel_->appear();
    struct Case {
        const char* name;
        Role role;
        const char* action;
        std::string_view key;
        DefaultsValue stored;
    };
    const bool isSmart = prefs_.isSmartAutoExpandEnabled();
    constexpr std::string_view kSmart = defaultskey::kIsSmartAutoExpandEnabled;
    for (const Case& c :
         {Case{"Smart Auto-Expand", Role::toggle, "press", kSmart, !isSmart},
          {"Smart Auto-Expand", Role::toggle, "press", kSmart, isSmart},
          {kSustained, Role::toggle, "press", defaultskey::kSustainedLoadNotificationsEnabled, true},
          {kStorage, Role::toggle, "press", defaultskey::kStorageAlertEnabled, true},
          {kStorage, Role::spinButton, "increment", defaultskey::kStorageAlertThresholdGB, 25.0},
          {kStorage, Role::spinButton, "decrement", defaultskey::kStorageAlertThresholdGB, 20.0},
          {kBattery, Role::toggle, "press", defaultskey::kBatteryAlertEnabled, true},
          {kBattery, Role::spinButton, "increment", defaultskey::kBatteryAlertThresholdPct, 20.0},
          {"°F", Role::radioButton, "press", defaultskey::kTemperatureUnit, "fahrenheit"s},
          {"°C", Role::radioButton, "press", defaultskey::kTemperatureUnit, "celsius"s},
          {"Dynamic", Role::radioButton, "press", defaultskey::kMenuBarIconMode, "on"s},
          {"Stats", Role::radioButton, "press", defaultskey::kMenuBarIconMode, "stats"s},
          {"Concise", Role::radioButton, "press", defaultskey::kInsightVerbosity, "concise"s},
          {"Detailed", Role::radioButton, "press", defaultskey::kInsightVerbosity, "detailed"s}}) {
        panel_->perform(panel_->node(c.name, c.role), c.action);
        panel_->advance(1s);
        EXPECT_EQ(machine_.userDefaults.objectForKey(c.key), c.stored) << c.name << ' ' << c.action;
    }
    prefs_.setStorageAlertThresholdGB(42.9);
    panel_->settle();
    EXPECT_EQ(panel_->told(),
              (Rows{"Settings", kLaunch, "*Smart Auto-Expand", "*Enable Sustained load Notifications",
                    "*Notify on Low Storage", "Notify on Low Storage: 42 GB", "*Notify on Low Battery",
                    "Notify on Low Battery: 20%", "Temperature unit", "*°C", "°F", "Menu Bar Style",
                    "Dynamic", "*Stats", "Insight Verbosity", "Concise", "*Detailed"}));
    const double tall = panel_->size().height;
    prefs_.setStorageAlertEnabled(false);
    prefs_.setBatteryAlertEnabled(false);
    panel_->settle();
    EXPECT_EQ(panel_->told().size(), 15U) << "without the numbers";
    EXPECT_LT(panel_->size().height, tall);
    EXPECT_EQ(prefs_.storageAlertThresholdGB(), 42.9) << "out of sight, not forgotten";
}

TEST_F(PreferencesViewTest, TheLoginItemIsReadAtEachLookAndAFailureIsOneLineAndMovesNothingBack) {
    using Call = ScriptedLoginItem::Call;
    ScriptedLoginItem& item = machine_.loginItem;
    item.currentStatus = LoginItem::kEnabled;
    panel_->appear();
    EXPECT_EQ(row(kLaunch).isOn, true);
    flip(kLaunch);
    EXPECT_EQ(item.currentStatus, LoginItem::kNotRegistered);
    EXPECT_EQ(row(kLaunch).isOn, false);
    flip(kLaunch);
    EXPECT_EQ(item.currentStatus, LoginItem::kEnabled);
    for (const int status : {1, 2, -1}) {  // only one of them means that it is on
        item.currentStatus = status;
        look();
        EXPECT_EQ(row(kLaunch).isOn, status == 1) << status;
    }
    EXPECT_EQ(item.calls, (std::vector<Call>{Call::status, Call::unregisterItem, Call::registerItem,
                                             Call::status, Call::status, Call::status}));
    EXPECT_EQ(machine_.standardOutput.lines, Rows{});

    item.registerError.always("no room left");
    item.unregisterError.always("");
    flip(kLaunch);
    EXPECT_EQ(row(kLaunch).isOn, true);
    flip(kLaunch);
    EXPECT_EQ(machine_.standardOutput.lines,
              (Rows{"Launch at login error: no room left", "Launch at login error: "}));
    item.currentStatus = LoginItem::kEnabled;
    EXPECT_EQ(row(kLaunch).isOn, false);
    look();
    EXPECT_EQ(row(kLaunch).isOn, true) << "the next look tells how it is";
    EXPECT_TRUE(machine_.userDefaults.written.empty()) << "it is none of the preferences";
}

TEST_F(PreferencesViewTest, AnAlertThatIsTurnedOnAsksWhoWasNeverAsked) {
    struct Case {
        NotificationAuthorization status;
        bool isGranted;
        std::uint64_t requests;
        bool staysOn;
    };
    using enum NotificationAuthorization;
    auto& center = machine_.userNotificationCenter;
    panel_->appear();
    for (const char* const name : {kSustained, kStorage, kBattery}) {
        for (const Case& c : {Case{notDetermined, false, 1, false}, Case{notDetermined, true, 1, true},
                              Case{denied, false, 0, true}, Case{authorized, false, 0, true}}) {
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
}

TEST_F(PreferencesViewTest, AnswersThatComeAfterItsEndAreNobodys) {
    panel_->appear();
    machine_.userNotificationCenter.status.always(NotificationAuthorization::notDetermined);
    machine_.userNotificationCenter.isGranted.always(false);
    machine_.loginItem.registerError.always("too late");
    machine_.loginItem.hold();
    machine_.dispatch.backgroundLoopQueue().hold();
    panel_->perform(row(kLaunch), "press");
    panel_->perform(row(kStorage), "press");
    look();
    panel_.reset();
    view_.reset();
    machine_.loginItem.letGo();
    machine_.dispatch.backgroundLoopQueue().letGo();
    machine_.advance(1s);
    EXPECT_TRUE(prefs_.storageAlertEnabled()) << "the panel that would have turned it off is gone";
    EXPECT_EQ(machine_.standardOutput.lines, Rows{"Launch at login error: too late"});
}

}  // namespace
}  // namespace norvane
