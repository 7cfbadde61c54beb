#include "DesktopTest.h"

#include <glib.h>

namespace norvane {

void DesktopTest::SetUp() {
    ASSERT_TRUE(xvfb_.isRunning()) << "Xvfb does not start";
    bystander_ = std::make_unique<Bystander>(xvfb_.display());
    ASSERT_NE(bystander_->root(), XCB_NONE);
    connect();
    if (!HasFatalFailure()) begin();
}

void DesktopTest::connect(const X11Connection::Uses& uses) {
    windowServer_.reset();
    connection_ = X11Connection::open(xvfb_.display().c_str(), uses);
    ASSERT_NE(connection_, nullptr);
    windowServer_ = std::make_unique<X11WindowServer>(*connection_, sessionBus_, systemBus_, layouts_,
                                                      appearance_, clock_, mainQueue_);
}

void DesktopTest::waitForTheServer() const {
    // Events that came of it come before the reply.
    const X11Reply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection_->get(), xcb_get_input_focus(connection_->get()), nullptr));
}

void DesktopTest::settle() const {
    waitForTheServer();
    while (g_main_context_iteration(nullptr, FALSE) == TRUE) {
    }
}

void DesktopTest::turn(std::chrono::milliseconds time) const {
    const auto end = clock_.now() + time;
    EXPECT_TRUE(comes([&] { return clock_.now() >= end; }));
}

}  // namespace norvane
