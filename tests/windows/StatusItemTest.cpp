#include <limits>

#include "platform/StatusItem.h"
#include "PlayedTray.h"
#include "PopoverFixture.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Numbers = Bystander::Numbers;

// The item, with two green squares, on a screen without a window manager and without a bus: in a strip at
// once, and in a tray as soon as there is one.
class StatusItemTest : public DesktopTest {
 protected:
    void begin() override {
        content_.swatches = {{{{4, 4}, {10, 10}}, kGreen}, {{{30, 4}, {10, 10}}, kGreen}};
        item_ = windowServer_->statusItemWithLength(54);
        item_->setContent(&content_);
        item_->setAction([this] { ++clicks_; });
        ASSERT_TRUE(comesToShow(kStrip.x + 8, 8, kGreenPixel));
    }
    xcb_window_t strip() const { return bystander_->windowAt(kStrip).value_or(XCB_NONE); }
    // Waits until the item has asked the tray.
    void ask(xcb_visualid_t visual = XCB_NONE) {
        tray_.reset();
        tray_ = std::make_unique<PlayedTray>(xvfb_.display(), visual);
        ASSERT_TRUE(comes([&] { return tray_->asking() != XCB_NONE; }));
        window_ = tray_->asking();
    }
    void dock(const PixelRect& part = kPart) {
        ask();
        tray_->embed(window_, part);
        ASSERT_TRUE(comesToShow(onScreen(part).x + 8, onScreen(part).y + 8, kGreenPixel));
        ASSERT_TRUE(comesToHaveItsButtonAt(part));
    }
    static PixelRect onScreen(const PixelRect& part) {
        return part.moved(PlayedTray::kPanel.x, PlayedTray::kPanel.y);
    }
    bool comesToHaveItsButtonAt(const PixelRect& part) const {
        return comes([&] { return item_->buttonFrame() == onScreen(part).inPoints(1); });
    }
    bool comesToPaintIn(Size size) const {
        return comes([&] { return content_.given == size; });
    }
    // The docked window's own pixel, with its opacity.
    std::uint32_t ownPixel(int x, int y) const {
        const auto found = bystander_->pixels(window_, {x, y, 1, 1});
        return found.empty() ? 0 : found.front();
    }

    static constexpr PixelRect kPart{30, 10, 54, 20};  // of the panel

    SwatchContent content_;
    std::unique_ptr<StatusItem> item_;
    int clicks_ = 0;
    std::unique_ptr<PlayedTray> tray_;
    xcb_window_t window_ = XCB_NONE;
};

TEST_F(StatusItemTest, TheStripIsADockThatTellsOfPressesOfTheFirstButtonAndMayEndThen) {
    EXPECT_EQ(bystander_->numbers(strip(), "_NET_WM_WINDOW_TYPE"),
              Numbers{bystander_->atom("_NET_WM_WINDOW_TYPE_DOCK")});
    EXPECT_EQ(bystander_->numbers(strip(), "_NET_WM_STRUT_PARTIAL"),
              (Numbers{0, 0, 22, 0, 0, 0, 0, 0, Xvfb::kWidth - 54, Xvfb::kWidth - 1, 0, 0}));
    const Numbers hints = bystander_->numbers(strip(), "WM_HINTS");
    EXPECT_TRUE(hints.size() > 1 && hints[0] % 2 == 1 && hints[1] == 0) << "says that it takes no keyboard";
    EXPECT_EQ(bystander_->text(strip(), "WM_CLASS"), std::string("norvane\0norvane\0", 16));
    EXPECT_EQ(item_->buttonFrame(), kStrip.inPoints(1));
    click(kStrip.x + 20, 10, 3);
    click(kStrip.x - 5, 10);
    click(kStrip.x + 50, 20);
    ASSERT_TRUE(comes([&] { return clicks_ == 1; }));
    EXPECT_TRUE(content_.pointerEvents.empty()) << "the button's presses are not the content's";
    item_->setAction([this] { item_.reset(); });
    click(kStrip.x + 20, 10);
    EXPECT_TRUE(comes([&] { return bystander_->windows().empty(); }));
    content_.change();  // nobody listens any more
}

TEST_F(StatusItemTest, TheStripMovesOnlyWhereItCanBeSeenAndComesBackWithoutFightingForIt) {
    settle();
    int before = content_.pictures;
    for (int i = 0; i < 100; ++i)
        content_.change();
    ASSERT_TRUE(comes([&] { return content_.pictures > before; }));
    settle();
    EXPECT_EQ(content_.pictures, before + 1) << "many changes, one repaint";
    content_.rate = 50;
    content_.change();
    bystander_->unmap(strip());
    settle();
    before = content_.pictures;
    turn(200ms);
    EXPECT_EQ(content_.pictures, before) << "off the screen";
    ASSERT_TRUE(comes([&] { return content_.pictures > before + 3; })) << "offered again, it goes on";
    content_.rate = 0;
    bystander_->close(strip());
    EXPECT_TRUE(comes([&] { return strip() == XCB_NONE; }));
    EXPECT_TRUE(comesToShow(kStrip.x + 8, 8, kGreenPixel)) << "without it there is no way to us";

    const xcb_window_t rival = bystander_->open({kStrip.x - 100, 0, 154, 100});
    const auto comesToTheFront = [&] { return comes([&] { return bystander_->windows().back() != rival; }); };
    ASSERT_TRUE(comesToTheFront());
    EXPECT_TRUE(comesToShow(kStrip.x + 34, 8, kGreenPixel)) << "what was covered is painted again";
    // A rival that wants the front as well and answers at once: the waits double, 0.25, 0.5, 1, 2 s.
    const auto start = clock_.now();
    for (int returns = 1; clock_.now() - start < 1000ms; ++returns) {
        bystander_->raise(rival);
        ASSERT_TRUE(comesToTheFront());
        EXPECT_LE(returns, 4);
    }
}

TEST_F(StatusItemTest, TheStripFollowsLengthScaleAppearanceAndMonitor) {
    setDark(true);
    EXPECT_TRUE(comes([&] { return (bystander_->pixelAt(kStrip.x + 45, 18) & 0xFF) < 60; }));
    const auto wide = [](int width) { return PixelRect{Xvfb::kWidth - width, 0, width, 22}; };
    const double none = std::numeric_limits<double>::quiet_NaN();
    for (const auto& [length, wanted] :
         {std::pair{StatusItem::kSquareLength, 22}, {-7.0, 22}, {none, 22}, {1e9, Xvfb::kWidth}, {0.0, 22}}) {
        item_->setLength(length);
        EXPECT_EQ(item_->buttonFrame(), wide(wanted).inPoints(1)) << length;
        EXPECT_TRUE(comesToBeAt(wide(wanted))) << length;
    }
    item_->setLength(54);
    bystander_->setResources("Xft.dpi:\t192\n");
    const PixelRect doubled{Xvfb::kWidth - 108, 0, 108, 44};
    ASSERT_TRUE(comesToBeAt(doubled));
    ASSERT_TRUE(comesToShow(doubled.x + 70, 16, kGreenPixel));
    EXPECT_EQ(item_->buttonFrame(), doubled.inPoints(2));
    bystander_->setResources("");
    ASSERT_TRUE(comesToBeAt(kStrip));
    // Below another one its row cannot be reserved: that would take the other one's.
    run("xrandr --setmonitor '*lower' 600/150x400/100+0+300 none");
    const PixelRect lower{600 - 54, 300, 54, 22};
    ASSERT_TRUE(comesToBeAt(lower));
    EXPECT_EQ(bystander_->numbers(*bystander_->windowAt(lower), "_NET_WM_STRUT"), (Numbers{0, 0, 0, 0}));
    EXPECT_TRUE(comes([&] { return item_->buttonFrame() == lower.inPoints(1); }));
}

TEST_F(StatusItemTest, InATrayItIsLaidOutIntoWhatItGetsAndFollowsEverythingElse) {
    ask();
    EXPECT_EQ(strip(), XCB_NONE) << "it is never in both";
    EXPECT_EQ(item_->buttonFrame(), std::nullopt) << "not before it is taken in";
    EXPECT_EQ(bystander_->numbers(window_, "_XEMBED_INFO"), (Numbers{0, 1}));
    const auto comesToHint = [&](std::uint32_t width, std::uint32_t height) {
        return comes([&] {
            const Numbers hints = bystander_->numbers(window_, "WM_NORMAL_HINTS");
            return hints.size() == 18 &&
                   Numbers{hints[5], hints[6], hints[15], hints[16]} == Numbers{width, height, width, height};
        });
    };
    EXPECT_TRUE(comesToHint(54, 22));
    dock();
    EXPECT_EQ(content_.given, (Size{54, 20}));
    EXPECT_GT(ownPixel(0, 0) & 0xFF, 200u) << "an opaque ground up to the corners";
    tray_->give(window_, {100, 5, 22, 22});
    ASSERT_TRUE(comesToPaintIn({22, 22}));
    EXPECT_EQ(item_->buttonFrame(), (Rect{{300, 305}, {22, 22}}));
    bystander_->unmap(window_);  // by the panel
    ASSERT_TRUE(comes([&] { return !item_->buttonFrame(); }));
    const int pictures = content_.pictures;
    content_.change();
    settle();
    EXPECT_EQ(content_.pictures, pictures) << "for nobody";
    bystander_->map(window_);
    EXPECT_TRUE(comesToHaveItsButtonAt({100, 5, 22, 22}));
    tray_->give(window_, {0, 0, 30'000, 30'000});  // 3 GB of pixels
    EXPECT_TRUE(comesToPaintIn({Xvfb::kWidth, Xvfb::kHeight}));
    item_->setLength(80);  // the tray has nothing against it
    EXPECT_TRUE(comesToHint(80, 22));
    EXPECT_TRUE(comes([&] { return bystander_->frameOf(window_).width == 80; }));
    setDark(true);
    EXPECT_TRUE(comes([&] { return (ownPixel(2, 2) & 0xFF) < 60; }));
    bystander_->setResources("Xft.dpi: 192");
    EXPECT_TRUE(comesToHint(160, 44));
    EXPECT_EQ(strip(), XCB_NONE);
}

TEST_F(StatusItemTest, IsAChipOnAPanelThatTakesTranslucentItems) {
    EXPECT_EQ(connection_->translucentVisual(connection_->opaqueVisual().id).id, XCB_NONE);
    // Not the one that we would choose: servers have several that look alike.
    xcb_visualid_t other = 1;
    while (other < 4096 && (other == connection_->translucentVisual().id ||
                            connection_->translucentVisual(other).id == XCB_NONE)) {
        ++other;
    }
    ASSERT_EQ(connection_->translucentVisual(other).id, other);
    ask(other);
    tray_->embed(window_, kPart);
    ASSERT_TRUE(comes([&] { return (ownPixel(8, 8) & 0xFFFFFF) == kGreenPixel; }));
    EXPECT_EQ(ownPixel(0, 10) >> 24, 0u) << "the panel shows around it";
    EXPECT_EQ(ownPixel(1, 1) >> 24, 0u) << "and at its round corners";
    content_.swatches = {{{{30, 6}, {8, 8}}, kBlue}};
    content_.change();
    ASSERT_TRUE(comes([&] { return (ownPixel(34, 10) & 0xFFFFFF) == kBluePixel; }));
    EXPECT_NEAR(ownPixel(8, 8) >> 24, 0.92 * 255, 1) << "painted over again, no darker than before";
}

TEST_F(StatusItemTest, PressesInATrayAreClicksAndNotElsewhereWhereverThePanelIs) {
    RecordingObserver observer;
    SwatchContent shown;
    const auto popover = windowServer_->makePopoverWindow(shown, observer);
    popover->place(anchorAbove(200, 50));
    popover->orderFront();
    dock();
    click(onScreen(kPart).x + 50, onScreen(kPart).y + 3);
    ASSERT_TRUE(comes([&] { return clicks_ == 1; }));
    tray_->slide(500, 600);  // of which the item is told nothing
    EXPECT_EQ(item_->buttonFrame(), (Rect{{530, 610}, {54, 20}}));
    click(540, 620);
    ASSERT_TRUE(comes([&] { return clicks_ == 2; }));
    EXPECT_EQ(observer.pressesOutside, 0);
    click(onScreen(kPart).x + 20, onScreen(kPart).y + 10);
    EXPECT_TRUE(comes([&] { return observer.pressesOutside == 1; })) << "it is not there any more";
    EXPECT_EQ(clicks_, 2);
}

TEST_F(StatusItemTest, APlaceLostInATrayIsTheStripsAndNothingStaysOnTheScreen) {
    const struct {
        const char* name;
        bool isDocked;
        std::function<void()> cause;
    } cases[] = {
        {"never taken in", false, [] {}},
        {"the tray goes before it takes the item in", false, [this] { tray_->endTray(); }},
        {"the panel dies", true, [this] { tray_.reset(); }},
        {"the tray's window goes, the panel stays", true, [this] { tray_->endTray(); }},
        {"thrown out", true, [this] { tray_->dismiss(window_); }},
        {"thrown out, and shown", true, [this] { tray_->throwOut(window_); }},
        {"destroyed before we know", true, [this] { tray_->close(window_); }},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        c.isDocked ? dock({10, 9, 22, 22}) : ask();
        ASSERT_FALSE(HasFatalFailure());
        c.cause();
        // Whatever is asked for now.
        setDark(!appearance_.isDark());
        content_.change();
        item_->setLength(54);
        item_->buttonFrame();
        EXPECT_TRUE(comes([&] { return strip() != XCB_NONE; }));
        if (tray_) turn(300ms);
        EXPECT_TRUE(!tray_ || tray_->asking() == window_) << "who has not kept it is not asked again so soon";
        tray_.reset();
        settle();
        EXPECT_EQ(bystander_->windows().size(), 1u);
        EXPECT_EQ(bystander_->frameOf(window_), PixelRect{}) << "the window is gone";
        EXPECT_EQ(item_->buttonFrame(), kStrip.inPoints(1));
    }
    dock();
    item_.reset();
    EXPECT_TRUE(comes([&] { return bystander_->frameOf(window_) == PixelRect{}; }))
        << "it goes with its item";
    content_.change();  // nobody listens any more
}

}  // namespace
}  // namespace norvane
