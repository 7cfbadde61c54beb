#pragma once

#include <gtest/gtest.h>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "Bystander.h"
#include "linux/RunLoop.h"
#include "platform/linux/LinuxAppearance.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/linux/X11WindowServer.h"
#include "platform/PopoverWindow.h"
#include "SwatchContent.h"
#include "Xvfb.h"

namespace norvane {

// Runs the main loop until the state is there. False if it does not come.
inline bool comes(const std::function<bool()>& state) {
    return runUntil(state);
}

// Our windows on an X server of this test's own, without a window manager, beside another program.
class DesktopTest : public ::testing::Test {
 protected:
    void SetUp() final;
    // What a kind of test does first, connected.
    virtual void begin() {}
    // Connects and makes the window server, with the resources that are set then.
    void connect(const X11Connection::Uses& uses = {});

    // Until the server has done what we asked of it. The main loop does not turn.
    void waitForTheServer() const;
    // The same, and has the main loop do everything that follows.
    void settle() const;
    // Has the main loop turn for so long.
    void turn(std::chrono::milliseconds time) const;

    void run(const std::string& command) const { ASSERT_EQ(runOn(xvfb_.display(), command), 0) << command; }
    void moveTo(int x, int y) const {
        run("xdotool mousemove " + std::to_string(x) + ' ' + std::to_string(y));
    }
    void click(int x, int y, int button = 1) const {
        moveTo(x, y);
        run("xdotool click " + std::to_string(button));
    }
    void type(const std::string& keys) const { run("xdotool key " + keys); }
    void setDark(bool isDark) { xSettings_.set({.isDark = isDark}); }

    bool shows(int x, int y, std::uint32_t pixel) const { return bystander_->pixelAt(x, y) == pixel; }
    bool comesToShow(int x, int y, std::uint32_t pixel) const {
        return comes([&] { return shows(x, y, pixel); });
    }
    bool comesToBeAt(const PixelRect& frame) const {
        return comes([&] { return bystander_->windowAt(frame).has_value(); });
    }

    Xvfb xvfb_;
    std::unique_ptr<Bystander> bystander_;
    LinuxMonotonicClock clock_;
    LinuxMainQueue mainQueue_;
    // There is none.
    BusConnection sessionBus_{mainQueue_, ""};
    BusConnection systemBus_{mainQueue_, ""};
    Published<XSettings> xSettings_;
    LinuxAppearance appearance_{sessionBus_, xSettings_};
    TextLayouts layouts_;
    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11WindowServer> windowServer_;
};

// Where the item is on a screen without a panel: in a strip of its own.
inline constexpr PixelRect kStrip{Xvfb::kWidth - 54, 0, 54, 22};

inline constexpr Color kGreen{0, 1, 0, 1};
inline constexpr Color kBlue{0, 0, 1, 1};
inline constexpr std::uint32_t kGreenPixel = 0x00FF00;
inline constexpr std::uint32_t kBluePixel = 0x0000FF;
inline constexpr std::uint32_t kRedPixel = 0xFF0000;

}  // namespace norvane
