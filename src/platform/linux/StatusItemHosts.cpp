#include "platform/linux/StatusItemHosts.h"

#include <utility>

#include "platform/linux/NotifierHost.h"
#include "platform/linux/StripHost.h"
#include "platform/linux/TrayHost.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

// The label's least width in a tray, in points.
constexpr double kLeastLabel = 50;
// A panel that starts, or ends, does so piece by piece: what it offers is looked at when nothing has changed
// for so long.
constexpr auto kSettled = 150ms;
// A panel that is told of another wish has so long to follow it.
constexpr auto kTimeToFollow = 500ms;
// After trouble with a panel it is tried again after so long, then twice as long and so on, so many times
// in a row.
constexpr std::chrono::nanoseconds kFirstPause = 5s;
constexpr int kMostTries = 5;

}  // namespace

StatusItemHosts::StatusItemHosts(const Desk& desk, BusConnection& sessionBus, Events events)
    : desk_(desk),
      sessionBus_(sessionBus),
      events_(std::move(events)),
      tray_(desk.connection, desk.connection.atoms().netSystemTray),
      notifier_(sessionBus),
      watcher_(notifier_.generation()) {
    traySeen_ = tray_.onDidChange([this] {
        ++trayCount_;
        granted_.reset();
        received_.reset();
        trayTrouble_ = {};
        chooseWhenSettled();
    });
    notifierSeen_ = notifier_.onDidChange([this] {
        const unsigned before = std::exchange(watcher_, notifier_.generation());
        if (before != watcher_) notifierTrouble_ = {};
        chooseWhenSettled();
    });
}

void StatusItemHosts::setLength(double length) {
    const bool wasWide = length_ && *length_ > 0;
    length_ = length;
    if (host_) host_->setLength(length);
    // A tray that gave a square to an icon has not been asked for more.
    if (kind_ == HostKind::tray && length > 0 && !wasWide) {
        granted_.reset();
        judgeWidthAfter(kTimeToFollow);
    }
    choose();
}

void StatusItemHosts::choose() {
    if (!length_) return;  // nobody has said yet what it is for
    const bool hasTray = tray_.owner() != XCB_NONE && !trayTrouble_.isNow;
    const NotifierWatch::State notifier =
        notifierTrouble_.isNow ? NotifierWatch::State::absent : notifier_.state();
    const bool isTrayNarrow = granted_.value_or(kLeastLabel) < kLeastLabel;
    const bool wantsWidth = *length_ > 0;
    const HostKind wanted = chosenHost({.current = kind_,
                                        .hasTray = hasTray,
                                        .isTrayNarrow = isTrayNarrow,
                                        .notifier = notifier,
                                        .wantsWidth = wantsWidth,
                                        .hasWindowManager = desk_.screen.hasWindowManager(),
                                        .hasWaited = hasWaited_});
    if (wanted == HostKind::none) {
        if (!wait_) waitForPanel();
    } else {
        wait_.cancel();
        hasWaited_ = false;
    }
    const bool isOtherTray = kind_ == HostKind::tray && hostTray_ != trayCount_;
    if (wanted == kind_ && !isOtherTray) return;
    host_.reset();  // gives its content up, and its place, before the next one takes either
    judgement_.cancel();
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
            hostTray_ = trayCount_;
            return std::make_unique<TrayHost>(
                desk_, tray_.owner(),
                TrayHost::Events{events_.clicked, [this](double width) { trayReceived(width); },
                                 [this] { trayLost(); }});
        case HostKind::notifier:
            return std::make_unique<NotifierHost>(
                desk_, sessionBus_, ++notifiersMade_,
                NotifierHost::Handlers{events_.clicked, [this] { notifierRegistered(); },
                                       [this] { notifierRefused(); }});
        case HostKind::strip:
            return std::make_unique<StripHost>(desk_, events_.clicked);
    }
    return nullptr;
}

void StatusItemHosts::trayReceived(double width) {
    received_ = width;
    trayTrouble_.times = 0;
    events_.placed();
    if (*length_ > 0) judgeWidthAfter(width < kLeastLabel ? kSettled : 0ms);
}

void StatusItemHosts::trayLost() {
    // The fault of a tray that has gone is not its successor's.
    if (hostTray_ == trayCount_) avoid(trayTrouble_);
    choose();
}

void StatusItemHosts::notifierRegistered() {
    notifierTrouble_.times = 0;
    events_.placed();
}

void StatusItemHosts::notifierRefused() {
    avoid(notifierTrouble_);
    choose();
}

// Some panels lay their items out only after they have taken them in.
void StatusItemHosts::judgeWidthAfter(std::chrono::nanoseconds pause) {
    judgement_ = desk_.mainQueue.after(pause, [this] {
        granted_ = received_;
        choose();
    });
}

void StatusItemHosts::avoid(Trouble& trouble) {
    trouble.isNow = true;
    if (trouble.times == kMostTries) return;
    trouble.over = desk_.mainQueue.after(kFirstPause * (1 << trouble.times++), [this, &trouble] {
        trouble.isNow = false;
        choose();
    });
}

}  // namespace norvane
