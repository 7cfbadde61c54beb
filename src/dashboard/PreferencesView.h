#pragma once

#include <string>
#include <utility>
#include <vector>

#include "dashboard/VoltGreen.h"
#include "platform/Platform.h"
#include "preferences/PreferencesStore.h"
#include "views/HostedView.h"
#include "views/Stepper.h"

namespace norvane {

// The settings: every change is live. Besides the preferences it holds one choice that belongs to the
// operating system, whether the program starts at login. Main thread only.
class PreferencesView {
 public:
    // Both outlive the view.
    PreferencesView(const Platform& platform, PreferencesStore& prefs);
    PreferencesView(const PreferencesView&) = delete;
    PreferencesView& operator=(const PreferencesView&) = delete;

    // The view as a popover shows it.
    SurfaceContent& content() { return hosted_; }

    static constexpr double kWidth = 360;
    // The tint of all controls in the panel.
    static constexpr Color voltGreen = VoltGreen::settings;

 private:
    // A switch for one of the alerts, and how it is read and set.
    struct Alert {
        std::string text;
        bool (PreferencesStore::*isOn)() const;
        void (PreferencesStore::*set)(bool);
    };
    // The threshold of an alert that is on.
    struct Threshold {
        std::string unit;
        Stepping stepping;
        double (PreferencesStore::*value)() const;
        void (PreferencesStore::*set)(double);
    };

    Element body();
    Element rows();
    Element switchRow(const std::string& text, bool isOn, std::function<void(bool)> flipped) const;
    Element launchRow();
    Element alertRow(const Alert& alert);
    Element alertRow(const Alert& alert, const Threshold& threshold);
    Element thresholdRow(const std::string& name, const Threshold& threshold);
    template <typename Value>
    Element pickerRow(const std::string& text, double itemWidth, Value selection,
                      std::vector<std::pair<std::string, Value>> options,
                      void (PreferencesStore::*set)(Value));

    void readLaunchAtLogin();
    void setLaunchAtLogin(bool isOn);
    void setAlert(const Alert& alert, bool isOn);

    LoginItem& loginItem_;
    StandardOutput& standardOutput_;
    UserNotificationCenter& notificationCenter_;
    MainQueue& mainQueue_;
    PreferencesStore& prefs_;
    bool launchAtLogin_ = false;
    HostedView hosted_;
    Cancellation prefsChange_;
    // Answers that come later find out by it that the view is gone.
    std::shared_ptr<PreferencesView*> self_ = std::make_shared<PreferencesView*>(this);
};

}  // namespace norvane
