#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "platform/Appearance.h"
#include "platform/MainQueue.h"

namespace norvane {

// The colour scheme that the desktop portal tells ("XDG Desktop Portal", org.freedesktop.portal.Settings).
// Light until it has told one, however late that is, and for ever where there is no bus, no portal or no
// answer. Nothing here waits: every message to the bus is asynchronous. The connection is made some time
// after the construction, since it starts threads of GLib and must not take the processor from the first
// picture.
class LinuxAppearance final : public Appearance {
 public:
    static constexpr std::chrono::milliseconds kUsualDelay{200};

    // Main thread, the one that runs GLib's default main context. The address is D-Bus' own kind; an empty
    // one stands for no bus.
    LinuxAppearance(MainQueue& mainQueue, std::string busAddress,
                    std::chrono::nanoseconds delay = kUsualDelay);
    ~LinuxAppearance() override;
    LinuxAppearance(const LinuxAppearance&) = delete;
    LinuxAppearance& operator=(const LinuxAppearance&) = delete;

    bool isDark() const override;
    [[nodiscard]] Cancellation onDidChange(std::function<void()> observer) override;

    // The session bus of this process; empty where none is running. No bus is ever started for it.
    static std::string sessionBusAddress();

 private:
    class Portal;

    std::shared_ptr<Portal> portal_;
    Cancellation start_;
};

}  // namespace norvane
