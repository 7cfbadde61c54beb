#include "platform/linux/StatusItemHosts.h"

#include <utility>

#include "platform/linux/NotifierHost.h"
#include "platform/linux/StripHost.h"
#include "platform/linux/TrayHost.h"

namespace norvane {
namespace {

// The label's least width in a tray, in points.
constexpr double kLeastLabel = 50;
// A panel that starts, or ends, does so piece by piece: what it offers is looked at when nothing has changed
// for so long.
constexpr auto kSettled = std::chrono::milliseconds(150);
// A tray that let us go without going itself is asked again after this time.
constexpr auto kTryAgain = std::chrono::seconds(5);

}  // namespace

StatusItemHosts::StatusItemHosts(const Desk& desk, BusConnection& sessionBus, Events events)
    : desk_(desk),
      sessionBus_(sessionBus),
      events_(std::move(events)),
      tray_(desk.connection),
      notifier_(sessionBus) {
    traySeen_ = tray_.onDidChange([this] {
        narrowTray_ = failedTray_ = XCB_NONE;
        chooseWhenSettled();
    });
    notifierSeen_ = notifier_.onDidChange([this] { chooseWhenSettled(); });
}

void StatusItemHosts::setLength(double length) {
    length_ = length;
    if (host_) host_->setLength(length);
    choose();
}

void StatusItemHosts::choose() {
    if (!length_) return;  // nobody has said yet what it is for
    const xcb_window_t tray = tray_.owner();
    const bool hasTray = tray != XCB_NONE && tray != failedTray_;
    const bool hasNotifier =
        notifier_.state() == NotifierWatch::State::present && failedNotifier_ != notifier_.generation();
    const NotifierWatch::State notifier = notifier_.state() == NotifierWatch::State::present && !hasNotifier
                                              ? NotifierWatch::State::absent
                                              : notifier_.state();
    const bool isHidden = !hasTray && !hasNotifier;
    if (!isHidden) {
        wait_.cancel();
        hasWaited_ = false;
    }
    const HostKind wanted = chosenHost({.hasTray = hasTray,
                                        .isTrayNarrow = hasTray && tray == narrowTray_,
                                        .notifier = notifier,
                                        .wantsWidth = *length_ > 0,
                                        .hasWindowManager = desk_.screen.hasWindowManager(),
                                        .hasWaited = hasWaited_ || kind_ == HostKind::strip});
    if (wanted == HostKind::none && !wait_) waitForPanel();
    if (wanted == kind_) return;
    host_.reset();  // gives its content up, and its place, before the next one takes either
    kind_ = wanted;
    host_ = make(wanted);
    if (host_) host_->setLength(*length_);
    events_.changed();
    if (host_ && host_->buttonFrame()) events_.placed();
}

void StatusItemHosts::chooseWhenSettled() {
    settling_ = desk_.mainQueue.after(kSettled, [this] { choose(); });
}

void StatusItemHosts::waitForPanel() {
    wait_ = desk_.mainQueue.after(kPatience, [this] {
        wait_.cancel();
        hasWaited_ = true;
        choose();
    });
}

std::unique_ptr<StatusItemHost> StatusItemHosts::make(HostKind kind) {
    switch (kind) {
        case HostKind::none:
            return nullptr;
        case HostKind::tray:
            isTrayProven_ = false;
            return std::make_unique<TrayHost>(
                desk_, tray_.owner(),
                TrayHost::Events{.clicked = events_.clicked,
                                 .received = [this](double width) { trayReceived(width); },
                                 .lost = [this] { trayLost(); }});
        case HostKind::notifier:
            return std::make_unique<NotifierHost>(
                desk_, sessionBus_, ++notifiersMade_,
                NotifierHost::Handlers{.clicked = events_.clicked,
                                       .registered = events_.placed,
                                       .refused = [this] { notifierRefused(); }});
        case HostKind::strip:
            return std::make_unique<StripHost>(desk_, events_.clicked);
    }
    return nullptr;
}

void StatusItemHosts::trayReceived(double width) {
    isTrayProven_ = true;
    events_.placed();
    const bool isNarrow = *length_ > 0 && width < kLeastLabel;
    if (isNarrow == (narrowTray_ == tray_.owner())) return;
    narrowTray_ = isNarrow ? tray_.owner() : XCB_NONE;
    choose();
}

void StatusItemHosts::trayLost() {
    failedTray_ = tray_.owner();
    if (isTrayProven_ && failedTray_ != XCB_NONE) {
        tryTrayAgain_ = desk_.mainQueue.after(kTryAgain, [this] {
            failedTray_ = XCB_NONE;
            choose();
        });
    }
    choose();
}

void StatusItemHosts::notifierRefused() {
    failedNotifier_ = notifier_.generation();
    choose();
}

}  // namespace norvane
