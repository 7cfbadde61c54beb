#include "platform/linux/NotifierHost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

#include "bus/ChildProcess.h"
#include "linux/RunLoop.h"
#include "PanelBus.h"
#include "platform/linux/LinuxAppearance.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/linux/NotifierWatch.h"
#include "platform/linux/X11Properties.h"
#include "windows/OwnDesk.h"
#include "windows/SwatchContent.h"
#include "windows/Xvfb.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t kGreen = 0x00FF00;
constexpr std::uint32_t kBlue = 0x0000FF;

// xfce4-panel, on a screen and a bus of its own, with the settings that it comes with.
class NotifierHostTest : public testing::Test {
 protected:
    void SetUp() override {
        ASSERT_TRUE(xvfb.isRunning()) << "Xvfb does not start";
        x11 = X11Connection::open(xvfb.display().c_str());
        ASSERT_NE(x11, nullptr);
        parts = std::make_unique<OwnDesk>(*x11, layouts, appearance, clock, queue);
        const std::string home = bus.folder();
        panel = std::make_unique<ChildProcess>(
            std::vector<std::string>{"xfce4-panel", "--disable-wm-check"},
            ChildProcess::Environment{{"DISPLAY", xvfb.display()},
                                      {"DBUS_SESSION_BUS_ADDRESS", bus.address()},
                                      {"GDK_BACKEND", "x11"},
                                      {"NO_AT_BRIDGE", "1"},
                                      {"HOME", home},
                                      {"XDG_CONFIG_HOME", home},
                                      {"XDG_CACHE_HOME", home},
                                      {"XDG_RUNTIME_DIR", home}});
        ASSERT_TRUE(runUntil([&] { return watch.state() == NotifierWatch::State::present; }))
            << "the panel does not start";
    }
    void TearDown() override { panel.reset(); }

    std::unique_ptr<NotifierHost> makeHost() {
        return std::make_unique<NotifierHost>(
            parts->desk, connection, 1,
            NotifierHost::Handlers{
                .clicked = [this] { ++clicks; }, .registered = [] {}, .refused = [] { ADD_FAILURE(); }});
    }
    void paint(const Color& color) {
        content.swatches = {{{{}, {22, 22}}, color}};
        content.change();
    }
    // Where the screen shows a square of that colour: its middle.
    std::optional<Point> found(std::uint32_t color) const {
        const PixelRect all = parts->screen.bounds();
        const X11Reply<xcb_get_image_reply_t> image(
            xcb_get_image_reply(x11->get(),
                                xcb_get_image(x11->get(), XCB_IMAGE_FORMAT_Z_PIXMAP, x11->root(), 0, 0,
                                              static_cast<std::uint16_t>(all.width),
                                              static_cast<std::uint16_t>(all.height), 0xFFFFFFFF),
                                nullptr));
        if (!image) return std::nullopt;
        const auto* const pixels = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(image.get()));
        PixelRect square;
        for (int at = 0; at < all.width * all.height; ++at) {
            if ((pixels[at] & 0xFFFFFF) != color) continue;
            const PixelRect one{at % all.width, at / all.width, 1, 1};
            square = square.isEmpty() ? one : square.united(one);
        }
        if (square.width < 10 || square.height < 10) return std::nullopt;
        return Point{square.inPoints(1).midX(), square.inPoints(1).midY()};
    }
    bool comesToShow(std::uint32_t color) {
        return runUntil([&] { return found(color).has_value(); });
    }

    Xvfb xvfb;
    PanelBus bus;
    LinuxMainQueue queue;
    LinuxMonotonicClock clock;
    std::unique_ptr<X11Connection> x11;
    TextLayouts layouts;
    BusConnection connection{
        queue, bus.address(), {.firstAttempt = 0ns, .firstPause = 5ms, .longestPause = 20ms}};
    Published<XSettings> xSettings;
    LinuxAppearance appearance{connection, xSettings};
    std::unique_ptr<OwnDesk> parts;
    NotifierWatch watch{connection};
    SwatchContent content;
    std::unique_ptr<ChildProcess> panel;
    int clicks = 0;
};

TEST_F(NotifierHostTest, ShowsWhatItIsGivenAndTakesClicksInThePanel) {
    int said = 0;
    auto host = makeHost();
    host->setContextMenu({{"Say_it", [&said] { ++said; }}});
    host->setContent(&content);
    EXPECT_EQ(host->buttonFrame(), std::nullopt);
    paint({0, 1, 0, 1});
    ASSERT_TRUE(comesToShow(kGreen));
    ASSERT_TRUE(runUntil([&] { return host->buttonFrame().has_value(); }));
    EXPECT_EQ(content.sizes.back(), (Size{22, 22}));
    content.rate = 60;
    paint({1, 0, 0, 1});
    EXPECT_TRUE(runUntil([&, before = content.pictures] { return content.pictures >= before + 2; }));
    content.rate = 0;
    paint({0, 0, 1, 1});
    ASSERT_TRUE(comesToShow(kBlue)) << "what lay halfway is not shown";

    // There is no window manager to tell what the panel leaves free.
    constexpr double kThickness = 30;
    setProperty(*x11, x11->root(), x11->atoms().netWorkarea, XCB_ATOM_CARDINAL,
                {0, static_cast<std::uint32_t>(kThickness), Xvfb::kWidth, Xvfb::kHeight - 30});
    ASSERT_TRUE(runUntil([&] {
        return host->buttonFrame() == Rect{{Xvfb::kWidth - 22, 0}, {22, kThickness}};
    }));
    const auto place = found(kBlue);
    ASSERT_TRUE(place && place->y < kThickness);
    ASSERT_EQ(runOn(xvfb.display(), {"xdotool", "mousemove", std::to_string(static_cast<int>(place->x)),
                                     std::to_string(static_cast<int>(place->y)), "click", "1"}),
              0);
    ASSERT_TRUE(runUntil([&] { return clicks == 1; }));
    EXPECT_EQ(host->buttonFrame(), (Rect{{std::floor(place->x) - 11, 0}, {22, kThickness}}));

    ASSERT_EQ(runOn(xvfb.display(), {"xdotool", "click", "3"}), 0);
    // The keys reach nobody until the menu is there.
    EXPECT_TRUE(runUntil([&] {
        return runOn(xvfb.display(), {"xdotool", "key", "Down", "Return"}) != 0 || said > 0;
    }));
    EXPECT_GT(said, 0);
    EXPECT_EQ(clicks, 1);

    host.reset();
    EXPECT_TRUE(runUntil([&] { return !found(kBlue); })) << "it goes away with its host";
}

}  // namespace
}  // namespace norvane
