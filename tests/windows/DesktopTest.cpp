#include "DesktopTest.h"

#include <glib.h>

namespace norvane {

bool comes(const std::function<bool()>& state) {
    using namespace std::chrono_literals;
    // Long, for a machine that is busy with other things; short looks, for what
    // other programs do.
    const auto deadline = std::chrono::steady_clock::now() + 20s;
    while (!state()) {
        if (std::chrono::steady_clock::now() > deadline) return false;
        const guint look = g_timeout_add(
            5, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
        g_main_context_iteration(nullptr, TRUE);
        g_source_remove(look);
    }
    return true;
}

void DesktopTest::SetUp() {
    if (!Xvfb::isInstalled()) GTEST_SKIP() << "Xvfb is not installed";
    ASSERT_TRUE(xvfb_.isRunning());
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

void DesktopTest::moveTo(int x, int y) const {
    ASSERT_EQ(runOn(xvfb_.display(), {"xdotool", "mousemove", std::to_string(x), std::to_string(y)}), 0);
}

void DesktopTest::click(int x, int y, int button) const {
    ASSERT_EQ(runOn(xvfb_.display(), {"xdotool", "mousemove", std::to_string(x), std::to_string(y), "click",
                                      std::to_string(button)}),
              0);
}

void DesktopTest::type(const std::string& key) const {
    ASSERT_EQ(runOn(xvfb_.display(), {"xdotool", "key", key}), 0);
}

}  // namespace norvane
