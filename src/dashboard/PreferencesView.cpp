#include "dashboard/PreferencesView.h"

#include <cmath>
#include <memory>
#include <optional>

#include "dashboard/ArdoSegmentedPicker.h"
#include "dashboard/ArdoSwitchStyle.h"
#include "drawing/NamedFonts.h"
#include "platform/Decimal.h"
#include "views/Divider.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {

PreferencesView::PreferencesView(const Platform& platform, PreferencesStore& prefs)
    : loginItem_(platform.loginItem),
      standardOutput_(platform.standardOutput),
      notificationCenter_(platform.userNotificationCenter),
      mainQueue_(platform.dispatch.mainQueue()),
      prefs_(prefs),
      hosted_([this] { return body(); }, platform) {
    prefsChange_ = prefs_.observe([this] { hosted_.invalidate(); });
}

Element PreferencesView::body() {
    Font title = font::kTitle2;
    title.weight = FontWeight::semibold;
    return vstack({.alignment = Alignment::start, .spacing = 8},  //
                  text("Settings", {.font = title})               //
                      .accessible({.role = AccessibleRole::heading, .name = "Settings"}),
                  divider().opacity(0.3),  //
                  rows())
        .padding(Insets::all(24))
        .frame({.width = kWidth})
        // Somebody may have changed it elsewhere since it was last looked at.
        .onAppear([this] { readLaunchAtLogin(); });
}

Element PreferencesView::rows() {
    using Store = PreferencesStore;
    const Alert sustainedLoad{"Enable Sustained load Notifications",
                              &Store::sustainedLoadNotificationsEnabled,
                              &Store::setSustainedLoadNotificationsEnabled};
    const Alert storage{"Notify on Low Storage", &Store::storageAlertEnabled, &Store::setStorageAlertEnabled};
    const Alert battery{"Notify on Low Battery", &Store::batteryAlertEnabled, &Store::setBatteryAlertEnabled};
    const Threshold storageThreshold{.unit = " GB",
                                     .stepping = {.least = 10, .most = 200, .step = 5},
                                     .value = &Store::storageAlertThresholdGB,
                                     .set = &Store::setStorageAlertThresholdGB};
    const Threshold batteryThreshold{.unit = "%",
                                     .stepping = {.least = 5, .most = 50, .step = 5},
                                     .value = &Store::batteryAlertThresholdPct,
                                     .set = &Store::setBatteryAlertThresholdPct};
    return vstack({.alignment = Alignment::start, .spacing = 8},  //
                  launchRow(),
                  switchRow("Smart Auto-Expand", prefs_.isSmartAutoExpandEnabled(),
                            [this](bool isOn) {
                                hosted_.change([&] { prefs_.setIsSmartAutoExpandEnabled(isOn); });
                            }),
                  alertRow(sustainedLoad),              //
                  alertRow(storage, storageThreshold),  //
                  alertRow(battery, batteryThreshold),
                  pickerRow<TemperatureUnit>(
                      "Temperature unit", 30, prefs_.temperatureUnit(),
                      {{"°C", TemperatureUnit::celsius}, {"°F", TemperatureUnit::fahrenheit}},
                      &Store::setTemperatureUnit),
                  pickerRow<MenuBarIconMode>(
                      "Menu Bar Style", 60, prefs_.menuBarIconMode(),
                      {{"Dynamic", MenuBarIconMode::on}, {"Stats", MenuBarIconMode::stats}},
                      &Store::setMenuBarIconMode),
                  pickerRow<InsightVerbosity>(
                      "Insight Verbosity", 60, prefs_.insightVerbosity(),
                      {{"Concise", InsightVerbosity::concise}, {"Detailed", InsightVerbosity::detailed}},
                      &Store::setInsightVerbosity))
        .padding({.bottom = 6});
}

Element PreferencesView::switchRow(const std::string& text, bool isOn,
                                   std::function<void(bool)> flipped) const {
    return ArdoSwitchStyle{.tint = voltGreen}.body(text, isOn, std::move(flipped));
}

Element PreferencesView::launchRow() {
    return switchRow("Launch Norvane at login", launchAtLogin_,
                     [this](bool isOn) { setLaunchAtLogin(isOn); });
}

Element PreferencesView::alertRow(const Alert& alert) {
    return switchRow(alert.text, (prefs_.*alert.isOn)(), [this, alert](bool isOn) { setAlert(alert, isOn); });
}

Element PreferencesView::alertRow(const Alert& alert, const Threshold& threshold) {
    return vstack({.alignment = Alignment::start, .spacing = 8},  //
                  alertRow(alert),                                //
                  when((prefs_.*alert.isOn)(), [&] { return thresholdRow(alert.text, threshold); }));
}

Element PreferencesView::thresholdRow(const std::string& name, const Threshold& threshold) {
    const double value = (prefs_.*threshold.value)();
    const std::string label = decimal(std::trunc(value), 0) + threshold.unit;
    const TextStyle style{
        .font = {.size = 12, .weight = FontWeight::medium, .design = FontDesign::monospaced}, .lineLimit = 1};
    return hstack({.spacing = 8},
                  text(label, style)
                      .accessibleHidden()  // the stepper says it
                      .frame({.width = 110, .horizontal = Alignment::end}),
                  stepper({.name = name, .valueText = label, .stepping = threshold.stepping}, value,
                          [this, set = threshold.set](double stepped) {
                              hosted_.change([&] { (prefs_.*set)(stepped); });
                          }));
}

template <typename Value>
Element PreferencesView::pickerRow(const std::string& text, double itemWidth, Value selection,
                                   std::vector<std::pair<std::string, Value>> options,
                                   void (PreferencesStore::*set)(Value)) {
    return hstack(
        {}, norvane::text(text, {.font = font::kBody}).accessibleHidden(),  // the picker says it
        spacer(),
        ArdoSegmentedPicker<Value>{
            .name = text,
            .selection = selection,
            .options = std::move(options),
            .activeTint = voltGreen,
            .itemWidth = itemWidth,
            .select = [this, set](const Value& value) { hosted_.change([&] { (prefs_.*set)(value); }); }}
            .body());
}

// --- The login item
// ------------------------------------------------------------------------------------------

void PreferencesView::readLaunchAtLogin() {
    loginItem_.status([weak = std::weak_ptr(self_)](int status) {
        const auto self = weak.lock();
        if (!self) return;
        PreferencesView& view = **self;
        view.hosted_.change([&] { view.launchAtLogin_ = status == LoginItem::kEnabled; });
    });
}

void PreferencesView::setLaunchAtLogin(bool isOn) {
    hosted_.change([&] { launchAtLogin_ = isOn; });
    // A failure moves nothing back: the next look at the panel tells how it is.
    const auto told = [&output = standardOutput_](const std::optional<std::string>& error) {
        if (error) output.printLine("Launch at login error: " + *error);
    };
    if (isOn) {
        loginItem_.registerItem(told);
    } else {
        loginItem_.unregisterItem(told);
    }
}

// --- Alerts
// --------------------------------------------------------------------------------------------------

void PreferencesView::setAlert(const Alert& alert, bool isOn) {
    hosted_.change([&] { (prefs_.*alert.set)(isOn); });
    if (!isOn) return;
    // Whoever was never asked is asked now. An earlier refusal is the user's, and so is the switch.
    const auto refused = [&mainQueue = mainQueue_, weak = std::weak_ptr(self_), set = alert.set] {
        mainQueue.async([weak, set] {
            if (const auto self = weak.lock()) {
                PreferencesView& view = **self;
                view.hosted_.change([&] { (view.prefs_.*set)(false); });
            }
        });
    };
    notificationCenter_.authorizationStatus(
        [&center = notificationCenter_, refused](NotificationAuthorization authorization) {
            if (authorization != NotificationAuthorization::notDetermined) return;
            center.requestAuthorization([refused](bool isGranted) {
                if (!isGranted) refused();
            });
        });
}

}  // namespace norvane
