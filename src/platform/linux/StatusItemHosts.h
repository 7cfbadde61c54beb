#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/linux/Desk.h"
#include "platform/linux/HostChoice.h"
#include "platform/linux/StatusItemHost.h"
#include "platform/linux/TrayWatch.h"

namespace norvane {

// Finds what carries the status item, and finds it anew when panels come and go. Main thread only.
class StatusItemHosts {
 public:
    // How long a panel is waited for before the item gets a strip of our own.
    static constexpr std::chrono::nanoseconds kPatience = std::chrono::seconds(2);

    struct Events {
        std::function<void()> clicked;
        // There is another host now, or none; and the host that there is may have got its place.
        std::function<void()> changed;
        std::function<void()> placed;
    };

    // All outlive this.
    StatusItemHosts(const Desk& desk, BusConnection& sessionBus, Events events);
    StatusItemHosts(const StatusItemHosts&) = delete;
    StatusItemHosts& operator=(const StatusItemHosts&) = delete;

    // Chooses for the first time, and again when the item wants another width, in points.
    void setLength(double length);

    // Null where the item is nowhere. It is told nothing yet when `changed` is called.
    StatusItemHost* host() const { return host_.get(); }

 private:
    void choose();
    void chooseWhenSettled();
    void waitForPanel();
    std::unique_ptr<StatusItemHost> make(HostKind kind);
    void trayReceived(double width);
    void trayLost();
    void notifierRefused();

    Desk desk_;
    BusConnection& sessionBus_;
    Events events_;
    TrayWatch tray_;
    NotifierWatch notifier_;
    std::optional<double> length_;

    HostKind kind_ = HostKind::none;
    std::unique_ptr<StatusItemHost> host_;
    // Of this tray, that it has no room for the label; and that it lost us, or never took us.
    xcb_window_t narrowTray_ = XCB_NONE;
    xcb_window_t failedTray_ = XCB_NONE;
    std::optional<unsigned> failedNotifier_;  // its generation
    bool isTrayProven_ = false;               // the tray that carries us has shown us
    unsigned notifiersMade_ = 0;
    bool hasWaited_ = false;
    Cancellation wait_;
    Cancellation settling_;
    Cancellation tryTrayAgain_;
    Cancellation traySeen_;
    Cancellation notifierSeen_;
};

}  // namespace norvane
