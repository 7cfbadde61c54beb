#include "DesktopTest.h"
#include "OwnDesk.h"
#include "platform/linux/ManagerSelection.h"
#include "platform/linux/TrayHost.h"
#include "PlayedTray.h"

namespace norvane {
namespace {

class TrayTest : public DesktopTest {
 protected:
    void begin() override {
        parts_ = std::make_unique<OwnDesk>(*connection_, layouts_, appearance_, clock_, mainQueue_);
        content_.swatches = {{{{8, 6}, {8, 8}}, kGreen}};
        tray_ = std::make_unique<PlayedTray>(xvfb_.display());
    }

    void makeHost() {
        host_ = std::make_unique<TrayHost>(
            parts_->desk, tray_->window(),
            TrayHost::Events{[this] { ++clicks_; }, [this](double width) { received_.push_back(width); },
                             [this] {
                                 ++losses_;
                                 host_.reset();  // as whoever chooses another host does
                             }});
        host_->setLength(54);
        host_->setContent(&content_);
    }
    // Makes the host, and waits until it has asked the tray.
    void ask() {
        makeHost();
        ASSERT_TRUE(comes([&] { return tray_->asking() != XCB_NONE; }));
        item_ = tray_->asking();
    }
    void dock() {
        ask();
        tray_->embed(item_, kPart);
        ASSERT_TRUE(comesToShow(kPart));
        ASSERT_TRUE(comes([&] { return !received_.empty(); }));
    }
    // At the swatch in that part of the panel.
    bool comesToShow(const PixelRect& part) const {
        return comes([&] {
            return shows(PlayedTray::kPanel.x + part.x + 10, PlayedTray::kPanel.y + part.y + 10, kGreenPixel);
        });
    }
    bool comesToBePaintedIn(Size size) const {
        return comes([&] { return content_.sizes.back() == size; });
    }
    // The window's own pixel, with its opacity.
    std::uint32_t ownPixel(int x, int y) const {
        const X11Reply<xcb_get_image_reply_t> reply(xcb_get_image_reply(
            bystander_->get(),
            xcb_get_image(bystander_->get(), XCB_IMAGE_FORMAT_Z_PIXMAP, item_, static_cast<std::int16_t>(x),
                          static_cast<std::int16_t>(y), 1, 1, 0xFFFFFFFF),
            nullptr));
        return reply ? *reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get())) : 0;
    }

    static constexpr PixelRect kPart{30, 10, 54, 20};  // of the panel
    static constexpr PixelRect kOnScreen{PlayedTray::kPanel.x + 30, PlayedTray::kPanel.y + 10, 54, 20};

    SwatchContent content_;
    std::unique_ptr<PlayedTray> tray_;
    std::unique_ptr<OwnDesk> parts_;
    std::unique_ptr<TrayHost> host_;
    xcb_window_t item_ = XCB_NONE;
    int clicks_ = 0;
    int losses_ = 0;
    std::vector<double> received_;
};

TEST_F(TrayTest, TheWatchFollowsTheTrayAsItComesAndGoes) {
    for (const bool fixes : {true, false}) {
        SCOPED_TRACE(fixes);
        tray_.reset();
        parts_.reset();
        connect({.fixes = fixes});
        X11Screen screen(*connection_);
        ManagerSelection watch(*connection_, connection_->atoms().netSystemTray);
        int changes = 0;
        const Cancellation told = watch.onDidChange([&] { ++changes; });
        const auto begins = [&] {
            tray_ = std::make_unique<PlayedTray>(xvfb_.display());
            return comes([&] { return watch.owner() == tray_->window(); });
        };
        EXPECT_TRUE(begins());
        settle();
        EXPECT_EQ(changes, 1) << "though there were two signs of it";
        tray_->close();
        EXPECT_TRUE(comes([&] { return watch.owner() == XCB_NONE; }));
        tray_->announce();  // a lie
        settle();
        EXPECT_EQ(changes, 2);
        ASSERT_TRUE(begins());
        tray_.reset();
        ASSERT_TRUE(begins());
        EXPECT_TRUE(comes([&] { return changes > 3; })) << "another one, though with the same window ids";
        tray_->become(bystander_->root());  // nothing can be docked there
        tray_->announce();
        EXPECT_TRUE(comes([&] { return watch.owner() == XCB_NONE; }));
        // The screen still hears of what it follows on the root.
        bystander_->setResources(fixes ? "Xft.dpi: 120" : "Xft.dpi: 96");
        EXPECT_TRUE(comes([&] { return screen.scale() == (fixes ? 1.25 : 1); }));
    }
}

TEST_F(TrayTest, AsksForItsSizeAndIsLaidOutIntoWhatItGets) {
    ask();
    using Numbers = std::vector<std::uint32_t>;
    EXPECT_EQ(bystander_->numbers(item_, "_XEMBED_INFO"), (Numbers{0, 1}));
    const Numbers hints = bystander_->numbers(item_, "WM_NORMAL_HINTS");
    ASSERT_EQ(hints.size(), 18u);
    EXPECT_EQ((Numbers{hints[5], hints[6], hints[15], hints[16]}), (Numbers{54, 22, 54, 22}));
    EXPECT_EQ(bystander_->text(item_, "WM_CLASS"), std::string("norvane\0norvane\0", 16));
    EXPECT_TRUE(received_.empty());
    EXPECT_EQ(host_->buttonFrame(), std::nullopt);

    tray_->embed(item_, kPart);
    ASSERT_TRUE(comesToShow(kPart));
    EXPECT_EQ(content_.sizes.back(), (Size{54, 20}));
    EXPECT_GT(ownPixel(0, 0) & 0xFF, 200u) << "an opaque ground up to the corners";
    EXPECT_EQ(host_->buttonFrame(), kOnScreen.inPoints(1));
    tray_->give(item_, {100, 5, 22, 22});
    ASSERT_TRUE(comesToBePaintedIn({22, 22}));
    EXPECT_TRUE(comes([&] { return received_ == std::vector<double>{54, 22}; }));
    EXPECT_EQ(host_->buttonFrame(), (Rect{{300, 305}, {22, 22}}));
    // Off the screen it is nowhere, and nothing is painted.
    bystander_->unmap(item_);
    ASSERT_TRUE(comes([&] { return !host_->buttonFrame(); }));
    const int pictures = content_.pictures;
    content_.change();
    settle();
    EXPECT_EQ(content_.pictures, pictures);
    bystander_->map(item_);
    EXPECT_TRUE(comesToShow({100, 5, 22, 22}));
    tray_->give(item_, {0, 0, 30'000, 30'000});  // 3 GB of pixels
    EXPECT_TRUE(comesToBePaintedIn({Xvfb::kWidth, Xvfb::kHeight}));
    EXPECT_EQ(losses_, 0);
}

TEST_F(TrayTest, FollowsItsLengthTheScaleAndTheAppearance) {
    dock();
    EXPECT_EQ(received_, std::vector<double>{54});
    host_->setLength(80);  // the tray has nothing against it
    ASSERT_TRUE(comesToBePaintedIn({80, 20}));
    EXPECT_EQ(bystander_->numbers(item_, "WM_NORMAL_HINTS")[5], 80u);
    EXPECT_TRUE(comes([&] { return received_.back() == 80; }));
    host_->setLength(StatusItem::kSquareLength);
    EXPECT_TRUE(comes([&] { return received_.back() == 22; }));
    EXPECT_GT(ownPixel(4, 4) & 0xFF, 200u);
    appearance_.setDark(true);
    EXPECT_TRUE(comes([&] { return (ownPixel(4, 4) & 0xFF) < 60; }));
    bystander_->setResources("Xft.dpi: 192");
    EXPECT_TRUE(comes([&] { return bystander_->frameOf(item_).width == 44; }));
    EXPECT_TRUE(comesToBePaintedIn({22, 22}));
}

TEST_F(TrayTest, IsAChipOnAPanelThatTakesTranslucentItems) {
    // Not the one that we would choose: servers have several that look alike.
    xcb_visualid_t other = 1;
    while (other < 4096 && (other == connection_->translucentVisual().id ||
                            connection_->translucentVisual(other).id == XCB_NONE)) {
        ++other;
    }
    ASSERT_EQ(connection_->translucentVisual(other).id, other);
    tray_ = std::make_unique<PlayedTray>(xvfb_.display(), other);
    ask();
    // A panel that takes such items has room for them in a window of the same
    // kind; its own are opaque here.
    tray_->embed(item_, kPart);
    ASSERT_TRUE(comes([&] { return (ownPixel(10, 10) & 0xFFFFFF) == kGreenPixel; }));
    EXPECT_EQ(ownPixel(0, 10) >> 24, 0u) << "the panel shows around it";
    EXPECT_EQ(ownPixel(1, 1) >> 24, 0u) << "and at its round corners";
    EXPECT_NEAR(ownPixel(30, 10) >> 24, 0.92 * 255, 1);
    EXPECT_EQ(connection_->translucentVisual(connection_->opaqueVisual().id).id, XCB_NONE);
    EXPECT_EQ(connection_->translucentVisual(12'345).id, XCB_NONE);
    // Painted over again, it is no darker than before.
    content_.swatches = {{{{24, 6}, {8, 8}}, kBlue}};
    content_.change();
    ASSERT_TRUE(comes([&] { return (ownPixel(28, 10) & 0xFFFFFF) == kBluePixel; }));
    EXPECT_NEAR(ownPixel(10, 10) >> 24, 0.92 * 255, 1);
}

TEST_F(TrayTest, PressesOnItAreClicksAndNotElsewhere) {
    dock();
    int elsewhere = 0;
    const Cancellation presses = parts_->outsidePresses.onPress([&] { ++elsewhere; });
    click(kOnScreen.x + 50, kOnScreen.y + 3);
    ASSERT_TRUE(comes([&] { return clicks_ == 1; }));
    click(kOnScreen.x + 50, kOnScreen.y + 3, 3);
    settle();
    tray_->slide(500, 600);  // of which the item is told nothing
    EXPECT_EQ(host_->buttonFrame(), (Rect{{530, 610}, {54, 20}}));
    click(540, 620);
    ASSERT_TRUE(comes([&] { return clicks_ == 2; }));
    EXPECT_EQ(elsewhere, 0);
    click(kOnScreen.x + 20, kOnScreen.y + 10);
    EXPECT_TRUE(comes([&] { return elsewhere == 1; })) << "it is not there any more";
    EXPECT_EQ(clicks_, 2);
}

TEST_F(TrayTest, ALostPlaceIsToldOnceAndNothingStaysOnTheScreen) {
    const struct {
        const char* name;
        bool isDocked;
        std::function<void()> cause;
    } cases[] = {
        {"never taken in", false, [] {}},
        {"the tray goes before it takes the item in", false, [this] { tray_->close(); }},
        {"the panel dies", true, [this] { tray_.reset(); }},
        {"the tray's window goes, the panel stays", true, [this] { tray_->close(); }},
        {"thrown out", true, [this] { tray_->dismiss(item_); }},
        {"thrown out, and shown", true,
         [this] {
             xcb_reparent_window(tray_->program().get(), item_, tray_->program().root(), 0, 0);
             tray_->program().sync();
         }},
        {"destroyed, and asked for more before we know", true,
         [this] {
             tray_->program().close(item_);
             host_->setLength(70);
             content_.change();
             appearance_.setDark(!appearance_.isDark());
             host_->buttonFrame();
         }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        tray_.reset();
        tray_ = std::make_unique<PlayedTray>(xvfb_.display());
        losses_ = 0;
        received_.clear();
        c.isDocked ? dock() : ask();
        ASSERT_FALSE(HasFatalFailure());
        c.cause();
        EXPECT_TRUE(comes([&] { return losses_ == 1; }));
        tray_.reset();
        settle();
        EXPECT_TRUE(bystander_->windows().empty());
        EXPECT_EQ(bystander_->frameOf(item_), PixelRect{}) << "the window is gone";
        EXPECT_EQ(losses_, 1);
        ASSERT_TRUE(connection_->isAlive());
    }
    tray_ = std::make_unique<PlayedTray>(xvfb_.display());
    makeHost();
    tray_->close();  // before the request is made
    EXPECT_TRUE(comes([&] { return losses_ == 2; }));
}

TEST_F(TrayTest, LeavesTheTrayWithItsHost) {
    dock();
    host_.reset();
    waitForTheServer();
    EXPECT_EQ(bystander_->frameOf(item_), PixelRect{}) << "the window is gone";
    EXPECT_FALSE(parts_->ownWindows.include(item_));
    content_.change();  // nobody listens any more
    settle();
    EXPECT_EQ(losses_, 0) << "it went by itself";
}

}  // namespace
}  // namespace norvane
