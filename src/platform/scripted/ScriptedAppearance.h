#pragma once

#include <optional>

#include "platform/Appearance.h"
#include "platform/Observers.h"

namespace norvane {

// A desktop that is light, without an accent colour and with motion until a test says otherwise.
class ScriptedAppearance final : public Appearance {
 public:
    bool isDark() const override { return dark_; }
    std::optional<Color> accentColor() const override { return accent_; }
    bool reducesMotion() const override { return reducesMotion_; }
    Cancellation onDidChange(std::function<void()> observer) override {
        return changed_.add(std::move(observer));
    }

    void setDark(bool dark) {
        dark_ = dark;
        changed_.tell();
    }
    void setAccentColor(const std::optional<Color>& accent) {
        accent_ = accent;
        changed_.tell();
    }
    void setReducesMotion(bool reduces) {
        reducesMotion_ = reduces;
        changed_.tell();
    }

 private:
    bool dark_ = false;
    std::optional<Color> accent_;
    bool reducesMotion_ = false;
    Observers<> changed_;
};

}  // namespace norvane
