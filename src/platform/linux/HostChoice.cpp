#include "platform/linux/HostChoice.h"

namespace norvane {

HostKind chosenHost(const HostSituation& situation) {
    const bool isTrayWide = situation.hasTray && situation.wantsWidth && !situation.isTrayNarrow;
    if (isTrayWide) return HostKind::tray;
    if (situation.notifier == NotifierWatch::State::present) return HostKind::notifier;
    // What a panel has taken is not given up for what is not known yet; and nothing is begun with that may
    // have to be given up as soon as it is known.
    const bool isUnknown = situation.notifier == NotifierWatch::State::unknown;
    if (isUnknown && situation.current == HostKind::notifier) return HostKind::notifier;
    const bool hasWaited = situation.hasWaited || situation.current == HostKind::strip;
    if (situation.hasTray) {
        const bool mayComeBetter = isUnknown && !hasWaited && situation.current != HostKind::tray;
        return mayComeBetter ? HostKind::none : HostKind::tray;
    }
    return hasWaited || !situation.hasWindowManager ? HostKind::strip : HostKind::none;
}

}  // namespace norvane
