#pragma once

#include <memory>
#include <optional>

#include "platform/Appearance.h"
#include "platform/linux/BusConnection.h"

namespace norvane {

// The colour scheme and the accent colour that the desktop portal tells ("XDG Desktop Portal",
// org.freedesktop.portal.Settings). Light and without an accent until it has told them, however late that is,
// and for ever where there is no bus, no portal or no answer. Nothing here waits.
class LinuxAppearance final : public Appearance {
 public:
    // Main thread. The session bus, which outlives this.
    explicit LinuxAppearance(BusConnection& sessionBus);
    ~LinuxAppearance() override;
    LinuxAppearance(const LinuxAppearance&) = delete;
    LinuxAppearance& operator=(const LinuxAppearance&) = delete;

    bool isDark() const override;
    std::optional<Color> accentColor() const override;
    bool reducesMotion() const override { return false; }
    [[nodiscard]] Cancellation onDidChange(std::function<void()> observer) override;

 private:
    class Portal;

    std::unique_ptr<Portal> portal_;
};

}  // namespace norvane
