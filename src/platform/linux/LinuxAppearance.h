#pragma once

#include <memory>
#include <optional>

#include "platform/Appearance.h"
#include "platform/linux/BusConnection.h"
#include "platform/linux/XSettings.h"
#include "platform/Observers.h"
#include "platform/Published.h"

namespace norvane {

// How the desktop looks, by its portal ("XDG Desktop Portal", org.freedesktop.portal.Settings), and by the
// settings manager of the X screen for what no portal says. Light, without an accent and in motion until one
// of them has said otherwise, however late that is, and for ever where there is no bus, no portal, no manager
// or no answer. Nothing here waits.
class LinuxAppearance final : public Appearance {
 public:
    // Main thread. The session bus and the manager's settings, which outlive this.
    LinuxAppearance(BusConnection& sessionBus, const Published<XSettings>& xSettings);
    ~LinuxAppearance() override;
    LinuxAppearance(const LinuxAppearance&) = delete;
    LinuxAppearance& operator=(const LinuxAppearance&) = delete;

    bool isDark() const override { return look_.isDark; }
    std::optional<Color> accentColor() const override { return look_.accentColor; }
    bool reducesMotion() const override { return look_.reducesMotion; }
    [[nodiscard]] Cancellation onDidChange(std::function<void()> observer) override;

 private:
    class Portal;
    struct Look {
        bool isDark = false;
        std::optional<Color> accentColor;
        bool reducesMotion = false;

        bool operator==(const Look&) const = default;
    };

    Look lookNow() const;
    void update();

    std::unique_ptr<Portal> portal_;
    const Published<XSettings>& xSettings_;
    Look look_;  // as observers know it
    Observers<> observers_;
    Cancellation portalChanges_;
    Cancellation xChanges_;
};

}  // namespace norvane
