#include "platform/linux/X11ScreenLight.h"

#include <xcb/dpms.h>
#include <xcb/screensaver.h>
#include <xcb/xcbext.h>
#include <utility>

#include "platform/linux/X11Event.h"

namespace norvane {
namespace {

// Servers answer much sooner. What takes longer is taken at the next look.
constexpr auto kAnswerTime = std::chrono::milliseconds(50);

bool isInFront(std::uint8_t saverState) {
    return saverState == XCB_SCREENSAVER_STATE_ON || saverState == XCB_SCREENSAVER_STATE_CYCLE;
}

}  // namespace

X11ScreenLight::X11ScreenLight(X11Connection& connection, const MonotonicClock& clock, MainQueue& mainQueue)
    : connection_(connection), clock_(clock), mainQueue_(mainQueue) {
    if (!connection_.saver().isPresent) return;
    events_ =
        connection_.onEvent(connection_.root(), [this](const xcb_generic_event_t& event) { handle(event); });
    xcb_connection_t* const server = connection_.get();
    const auto state = xcb_screensaver_query_info(server, connection_.root());
    xcb_screensaver_select_input(server, connection_.root(), XCB_SCREENSAVER_EVENT_NOTIFY_MASK);
    const X11Reply<xcb_screensaver_query_info_reply_t> reply(
        xcb_screensaver_query_info_reply(server, state, nullptr));
    isSaverInFront_ = reply && isInFront(reply->state);
}

X11ScreenLight::~X11ScreenLight() {
    if (question_ && connection_.isAlive()) xcb_discard_reply(connection_.get(), *question_);
}

bool X11ScreenLight::isLit() {
    takeAnswer();
    ask(kPatience);
    return !isDark();
}

bool X11ScreenLight::isKnownDark() {
    takeAnswer();
    ask(kLongPatience);
    return isDark();
}

Cancellation X11ScreenLight::onLit(std::function<void()> observer) {
    auto added = std::make_shared<Cancellation>(lit_.add(std::move(observer)));
    if (++*waiting_ == 1) lookAgainLater();
    return Cancellation([this, alive = std::weak_ptr(waiting_), added] {
        added->cancel();
        const auto waiting = alive.lock();
        if (!waiting || --*waiting > 0) return;
        // Nobody looks any more: what was true of the power says nothing about the next time.
        look_.cancel();
        isPoweredDown_ = false;
        asked_.reset();
    });
}

void X11ScreenLight::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) != connection_.saver().firstEvent + XCB_SCREENSAVER_NOTIFY) return;
    const bool wasDark = isDark();
    isSaverInFront_ = isInFront(eventAs<xcb_screensaver_notify_event_t>(event).state);
    if (wasDark && !isDark()) lit_.tell();
}

void X11ScreenLight::ask(std::chrono::nanoseconds patience) {
    if (asked_ && clock_.now() - *asked_ < patience) return;
    if (!connection_.dpms().isPresent || question_ || !connection_.isAlive()) return;
    question_ = xcb_dpms_info(connection_.get()).sequence;
    asked_ = clock_.now();
}

// The connection reads replies together with the events, whoever waits for them.
void X11ScreenLight::takeAnswer() {
    if (!question_) return;
    void* answer = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (xcb_poll_for_reply(connection_.get(), *question_, &answer, &error) == 0) return;
    question_.reset();
    const X11Reply<xcb_dpms_info_reply_t> reply(static_cast<xcb_dpms_info_reply_t*>(answer));
    const X11Reply<xcb_generic_error_t> failure(error);
    isPoweredDown_ = reply && reply->state != 0 && reply->power_level != XCB_DPMS_DPMS_MODE_ON;
}

void X11ScreenLight::lookAgainLater() {
    if (!connection_.dpms().isPresent) return;  // then the saver's events tell everything
    look_ = mainQueue_.after(kPatience, [this] {
        takeAnswer();
        ask(std::chrono::nanoseconds(0));
        look_ = mainQueue_.after(kAnswerTime, [this] { lookAgain(); });
    });
}

void X11ScreenLight::lookAgain() {
    const bool wasDark = isDark();
    takeAnswer();
    lookAgainLater();
    if (wasDark && !isDark()) lit_.tell();
}

}  // namespace norvane
