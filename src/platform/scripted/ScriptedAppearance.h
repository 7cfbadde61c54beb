#pragma once

#include "platform/Appearance.h"
#include "platform/Observers.h"

namespace norvane {

// A desktop that is light until a test turns it dark.
class ScriptedAppearance final : public Appearance {
 public:
    bool isDark() const override { return dark_; }
    Cancellation onDidChange(std::function<void()> observer) override {
        return changed_.add(std::move(observer));
    }

    void setDark(bool dark) {
        dark_ = dark;
        changed_.tell();
    }

 private:
    bool dark_ = false;
    Observers<> changed_;
};

}  // namespace norvane
