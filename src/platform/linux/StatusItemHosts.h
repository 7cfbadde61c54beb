#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "platform/linux/Desk.h"
#include "platform/linux/HostChoice.h"
#include "platform/linux/ManagerSelection.h"
#include "platform/linux/StatusItemHost.h"

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
    // Something that did not work, and is tried again after a pause, ever more seldom and not for ever. A
    // success begins the count anew.
    struct Trouble {
        bool isNow = false;
        int times = 0;
        Cancellation over;
    };

    void choose();
    void chooseWhenSettled();
    void waitForPanel();
    std::unique_ptr<StatusItemHost> make(HostKind kind);
    void trayReceived(double width);
    void trayLost();
    void notifierRegistered();
    void notifierRefused();
    void judgeWidthAfter(std::chrono::nanoseconds pause);
    void avoid(Trouble& trouble);

    Desk desk_;
    BusConnection& sessionBus_;
    Events events_;
    ManagerSelection tray_;
    NotifierWatch notifier_;
    std::optional<double> length_;

    HostKind kind_ = HostKind::none;
    std::unique_ptr<StatusItemHost> host_;
    unsigned notifiersMade_ = 0;

    // Trays are told apart by counting: one that starts again may have the window of the one before.
    unsigned trayCount_ = 0;
    unsigned hostTray_ = 0;           // the one that the host was made for
    std::optional<double> granted_;   // what the present one gave to the label, in points
    std::optional<double> received_;  // what it gave last, to whatever was asked for
    Trouble trayTrouble_;
    Trouble notifierTrouble_;
    unsigned watcher_ = 0;  // of which the trouble is

    bool hasWaited_ = false;
    Cancellation wait_;
    Cancellation settling_;
    Cancellation judgement_;
    Cancellation traySeen_;
    Cancellation notifierSeen_;
};

}  // namespace norvane
