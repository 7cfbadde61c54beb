#include "platform/linux/HostChoice.h"

namespace norvane {

HostKind chosenHost(const HostSituation& situation) {
    const bool isTrayWide = situation.hasTray && situation.wantsWidth && !situation.isTrayNarrow;
    if (isTrayWide) return HostKind::tray;
    if (situation.notifier == NotifierWatch::State::present) return HostKind::notifier;
    if (situation.hasTray) {
        // A narrow place that is taken is kept until it is known whether there is something better; one that
        // is not is left alone until then, so that the item does not jump.
        const bool maySomethingBetterCome =
            situation.notifier == NotifierWatch::State::unknown && !situation.hasWaited;
        return maySomethingBetterCome && !situation.isTrayNarrow ? HostKind::none : HostKind::tray;
    }
    return situation.hasWaited || !situation.hasWindowManager ? HostKind::strip : HostKind::none;
}

}  // namespace norvane
