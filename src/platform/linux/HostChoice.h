#pragma once

#include "platform/linux/NotifierWatch.h"

namespace norvane {

// What carries the status item.
enum class HostKind {
    none,      // nothing, for now
    tray,      // a window of ours in a system tray
    notifier,  // a picture that a panel shows for us
    strip,     // a window of our own at the edge of the screen
};

// What is known of the desktop at a moment.
struct HostSituation {
    // What carries the item now.
    HostKind current = HostKind::none;
    // A system tray that has not failed us, and whether it has given less room than the label needs.
    bool hasTray = false;
    bool isTrayNarrow = false;
    NotifierWatch::State notifier = NotifierWatch::State::absent;
    // The item is wider than a square.
    bool wantsWidth = false;
    bool hasWindowManager = true;
    // A panel, or an answer, has had its time to come.
    bool hasWaited = false;
};

// The label is worth most, so a tray that has room for it comes first. A picture is better handed to the
// panel than put into a tray, since the panel then knows about menu and tooltip. A session that starts brings
// its panel up soon; where not even a window manager is there, none is waited for.
HostKind chosenHost(const HostSituation& situation);

}  // namespace norvane
