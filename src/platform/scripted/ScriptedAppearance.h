#pragma once

#include <optional>

#include "platform/Appearance.h"
#include "platform/Observers.h"

namespace norvane {

// A desktop that is light until a test turns it dark, and has no accent colour until a test chooses one.
class ScriptedAppearance final : public Appearance {
 public:
    bool isDark() const override { return dark_; }
    std::optional<Color> accentColor() const override { return accent_; }
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

 private:
    bool dark_ = false;
    std::optional<Color> accent_;
    Observers<> changed_;
};

}  // namespace norvane
