#pragma once

#include <gtest/gtest.h>
#include <chrono>
#include <functional>
#include <memory>

#include "Bystander.h"
#include "platform/Appearance.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/linux/X11WindowServer.h"
#include "platform/Observers.h"
#include "platform/PopoverWindow.h"
#include "SwatchContent.h"
#include "Xvfb.h"

namespace norvane {

class SwitchedAppearance final : public Appearance {
 public:
    bool isDark() const override { return isDark_; }
    std::optional<Color> accentColor() const override { return std::nullopt; }
    bool reducesMotion() const override { return false; }
    Cancellation onDidChange(std::function<void()> observer) override {
        return changed_.add(std::move(observer));
    }
    void setDark(bool isDark) {
        isDark_ = isDark;
        changed_.tell();
    }

 private:
    bool isDark_ = false;
    Observers<> changed_;
};

// Runs the main loop until the state is there. False if it does not come.
bool comes(const std::function<bool()>& state);

// Our windows on an X server of this test's own, without a window manager,
// beside another program.
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

    void moveTo(int x, int y) const;
    void click(int x, int y, int button = 1) const;
    void type(const std::string& key) const;
    bool shows(int x, int y, std::uint32_t pixel) const { return bystander_->pixelAt(x, y) == pixel; }

    Xvfb xvfb_;
    std::unique_ptr<Bystander> bystander_;
    LinuxMonotonicClock clock_;
    LinuxMainQueue mainQueue_;
    // There is none.
    BusConnection sessionBus_{mainQueue_, ""};
    BusConnection systemBus_{mainQueue_, ""};
    SwitchedAppearance appearance_;
    TextLayouts layouts_;
    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11WindowServer> windowServer_;
};

// The anchor below which a popover hangs that has its upper edge's middle
// there.
constexpr Rect anchorAbove(double middle, double top) {
    return {{middle - 27, top - PopoverWindow::kGap - 22}, {54, 22}};
}

// Where the item is on a screen without a panel: in a strip of its own.
inline constexpr PixelRect kStrip{Xvfb::kWidth - 54, 0, 54, 22};

inline constexpr Color kGreen{0, 1, 0, 1};
inline constexpr Color kBlue{0, 0, 1, 1};
inline constexpr std::uint32_t kGreenPixel = 0x00FF00;
inline constexpr std::uint32_t kBluePixel = 0x0000FF;
inline constexpr std::uint32_t kRedPixel = 0xFF0000;

}  // namespace norvane
