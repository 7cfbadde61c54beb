#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <memory>
#include <set>
#include <thread>

#include "DesktopTest.h"
#include "drawing/PanelTones.h"
#include "platform/linux/CairoHandles.h"
#include "platform/linux/CairoPainter.h"
#include "platform/linux/PangoTextRuler.h"
#include "platform/scripted/ScriptedMachine.h"
#include "Program.h"
#include "shell/PassthroughHostingView.h"

namespace norvane {
namespace {

constexpr PixelRect kStrip{Xvfb::kWidth - 54, 0, 54, 22};
constexpr int kDashboardWidth = 520;
constexpr int kSettingsWidth = 360;
constexpr int kInfoWidth = 380;
constexpr int kWelcomeWidth = 340;
// Of the dashboard: the pods' middle, from its top, and the most that it is high with all of them closed.
constexpr int kPodsMiddle = 105;
constexpr int kHeightWithoutAPanel = 220;

// The real program on a display without a window manager, as its user clicks it.
class ProgramTest : public DesktopTest {
 protected:
    void SetUp() override {
        DesktopTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        program_ = std::make_unique<Program>(xvfb_.display());
        ASSERT_TRUE(comes([&] { return stripIsPainted(); })) << program_->errors();
    }
    void TearDown() override {
        program_.reset();
        DesktopTest::TearDown();
    }

    std::size_t colours(const PixelRect& part) const {
        const auto pixels = bystander_->pixels(part);
        return std::set<std::uint32_t>(pixels.begin(), pixels.end()).size();
    }
    bool stripIsPainted() const { return bystander_->windowAt(kStrip) && colours(kStrip) > 8; }
    // The dashboard's place, once its window is there and painted.
    std::optional<PixelRect> dashboard() const { return popover(kDashboardWidth); }
    // Likewise of any popover, by its width.
    std::optional<PixelRect> popover(int width) const {
        for (const xcb_window_t window : bystander_->windows()) {
            const PixelRect frame = bystander_->frameOf(window);
            if (frame.width == width && colours(frame) > 32) return frame;
        }
        return std::nullopt;
    }
    bool comesUp(int width) {
        return comes([&] { return popover(width).has_value(); });
    }
    bool goesAway(int width) {
        return comes([&] { return !popover(width); });
    }
    // The buttons in the dashboard's header, the last one 0, 20 points wide and 6 apart.
    void clickHeader(int fromLast) {
        const PixelRect frame = *dashboard();
        click(frame.x + frame.width - 12 - 10 - 26 * fromLast, frame.y + 12 + 10);
    }
    void clickStrip() { click(kStrip.x + 27, 11); }
    bool opens() {
        return comes([&] { return dashboard().has_value(); });
    }
    bool closes() {
        return comes([&] { return !dashboard(); });
    }

    std::unique_ptr<Program> program_;
};

// How the CPU column of the label looks at a load, beside a memory column of so many characters.
class ExpectedLabel {
 public:
    std::vector<std::uint32_t> cpuColumn(double percent, double ramUsed) {
        MenuBarStatsModel model;
        PassthroughHostingView view(model, machine_.platform(ruler_));
        model.cpuPercent.set(percent);
        model.ramUsedGB.set(ramUsed);
        DisplayList list = view.displayList({54, 22}, machine_.time.monotonic());
        const Rect all{{}, {54, 22}};
        list.items.insert(list.items.begin(),
                          {"back", all, FillShape{RoundedRect{all, 0}, panelTones(false).strip}});
        const CairoSurface surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, 54, 22));
        const PixelRect whole{0, 0, 54, 22};
        CairoPainter(layouts_).paint(surface.get(), {}, list, {&whole, 1});
        cairo_surface_flush(surface.get());
        const auto* const data = cairo_image_surface_get_data(surface.get());
        std::vector<std::uint32_t> pixels;
        for (int y = kColumn.y; y < kColumn.y + kColumn.height; ++y) {
            const auto* const row = reinterpret_cast<const std::uint32_t*>(
                data + y * cairo_image_surface_get_stride(surface.get()));
            for (int x = kColumn.x; x < kColumn.x + kColumn.width; ++x)
                pixels.push_back(row[x] & 0xFFFFFF);
        }
        return pixels;
    }
    static bool areAlike(const std::vector<std::uint32_t>& a, const std::vector<std::uint32_t>& b) {
        const auto isNear = [](std::uint32_t p, std::uint32_t q) {
            for (const int shift : {0, 8, 16}) {
                const int difference =
                    static_cast<int>((p >> shift) & 0xFF) - static_cast<int>((q >> shift) & 0xFF);
                if (std::abs(difference) > 24) return false;
            }
            return true;
        };
        return std::equal(a.begin(), a.end(), b.begin(), b.end(), isNear);
    }

    // Inside of the strip's edge.
    static constexpr PixelRect kColumn{3, 2, 22, 17};

 private:
    ScriptedMachine machine_;
    TextLayouts layouts_;
    PangoTextRuler ruler_{layouts_};
};

TEST_F(ProgramTest, TheLabelFollowsALoadStartedByHand) {
    ExpectedLabel expected;
    std::vector<std::vector<std::uint32_t>> busy;
    for (int percent = 90; percent <= 100; ++percent) {
        for (const double ram : {1.0, 10.0, 100.0})
            busy.push_back(expected.cpuColumn(percent, ram));
    }
    std::atomic<bool> goesOn = true;
    std::vector<std::thread> load;
    for (unsigned i = 0; i < std::max(1U, std::thread::hardware_concurrency()); ++i) {
        load.emplace_back([&goesOn] {
            while (goesOn) {
            }
        });
    }
    EXPECT_TRUE(comes([&] {
        const auto shown = bystander_->pixels({kStrip.x + ExpectedLabel::kColumn.x, ExpectedLabel::kColumn.y,
                                               ExpectedLabel::kColumn.width, ExpectedLabel::kColumn.height});
        return std::any_of(busy.begin(), busy.end(),
                           [&](const auto& picture) { return ExpectedLabel::areAlike(shown, picture); });
    })) << "the label never read 90 percent or more";
    goesOn = false;
    for (std::thread& thread : load)
        thread.join();
}

TEST_F(ProgramTest, AClickOpensTheDashboardUnderTheItemAndEveryWayClosesIt) {
    const PixelRect neighbour{20, 300, 100, 100};
    bystander_->open(neighbour);
    struct Way {
        const char* name;
        std::function<void()> close;
    };
    for (const Way& way :
         {Way{"a second click on the item", [&] { clickStrip(); }}, Way{"Esc", [&] { type("Escape"); }},
          Way{"a click on another window", [&] { click(neighbour.x + 50, neighbour.y + 50); }},
          Way{"a click on the empty desktop", [&] { click(400, 600); }}}) {
        clickStrip();
        ASSERT_TRUE(opens()) << way.name << program_->errors();
        const PixelRect frame = *dashboard();
        EXPECT_EQ(frame.x + frame.width, Xvfb::kWidth - 8) << "inside the screen";
        EXPECT_EQ(frame.y, 28) << "below the item";
        click(frame.x + 200, frame.y + 8);
        EXPECT_TRUE(dashboard()) << "a click inside closed it";
        way.close();
        EXPECT_TRUE(closes()) << way.name;
    }
    EXPECT_EQ(bystander_->presses(), 1) << "the click that closed it reached the other window";
}

TEST_F(ProgramTest, TheHeadersButtonsOpenTheirPopoversInItsPlaceOrBesideIt) {
    for (const auto& [fromLast, width] : {std::pair{0, kInfoWidth}, std::pair{1, kSettingsWidth}}) {
        clickStrip();
        ASSERT_TRUE(opens()) << program_->errors();
        clickHeader(fromLast);
        ASSERT_TRUE(comesUp(width)) << program_->errors();
        EXPECT_TRUE(closes());
        EXPECT_EQ(popover(width)->x + width, Xvfb::kWidth - 8);
        type("Escape");
        EXPECT_TRUE(goesAway(width));
    }
    clickStrip();
    ASSERT_TRUE(opens());
    clickHeader(2);
    clickHeader(1);
    ASSERT_TRUE(comesUp(kSettingsWidth));
    EXPECT_TRUE(dashboard()) << "pinned, it stays";
    type("Escape");
    EXPECT_TRUE(goesAway(kSettingsWidth));
    click(20, 600);
    clickStrip();
    EXPECT_TRUE(dashboard()) << "nothing else closes it";
    clickHeader(2);
    clickStrip();
    EXPECT_TRUE(closes()) << "no longer pinned";
}

TEST_F(ProgramTest, EachPodOpensItsPanelAndIsRememberedAndClosesItAgain) {
    clickStrip();
    ASSERT_TRUE(opens()) << program_->errors();
    const auto height = [&] {
        const auto frame = dashboard();
        return frame ? frame->height : 0;
    };
    const auto clickPod = [&](int x) {
        const PixelRect frame = *dashboard();
        click(frame.x + x, frame.y + kPodsMiddle);
    };
    EXPECT_GT(height(), kHeightWithoutAPanel);
    clickPod(50);
    ASSERT_TRUE(comes([&] { return height() <= kHeightWithoutAPanel; })) << height();
    const int closed = height();
    for (const auto& [x, name] :
         {std::pair{180, "memory"}, {320, "storage"}, {kDashboardWidth - 50, "battery"}, {50, "cpu"}}) {
        clickPod(x);
        const std::string line = "lastViewedPod=\"" + std::string(name) + "\"\n";
        EXPECT_TRUE(comes([&] { return program_->defaults().find(line) != std::string::npos; }))
            << name << program_->defaults();
        EXPECT_TRUE(comes([&] { return height() > closed; })) << name;
        clickPod(x);
        EXPECT_TRUE(comes([&] { return height() == closed; })) << name << height();
        EXPECT_NE(program_->defaults().find(line), std::string::npos) << name << ": closed is not forgotten";
    }
}

TEST_F(ProgramTest, TheFirstStartWelcomesAndGoesOnToTheDashboard) {
    program_.reset();  // there is one on a display
    program_ = std::make_unique<Program>(xvfb_.display(), false);
    ASSERT_TRUE(comesUp(kWelcomeWidth)) << program_->errors();
    type("Escape");
    EXPECT_TRUE(goesAway(kWelcomeWidth));
    clickStrip();
    ASSERT_TRUE(comesUp(kWelcomeWidth)) << "dismissed is not seen";
    type("Tab");
    type("Return");
    EXPECT_TRUE(opens()) << program_->errors();
    EXPECT_FALSE(popover(kWelcomeWidth));
}

TEST_F(ProgramTest, TheQuitRowEndsItAndSoDoesASignal) {
    clickStrip();
    ASSERT_TRUE(opens());
    const PixelRect frame = *dashboard();
    click(frame.x + frame.width / 2, frame.y + frame.height - 12 - 12);
    ASSERT_TRUE(comes([&] { return program_->exitStatus().has_value(); }));
    EXPECT_EQ(program_->exitStatus(), 0) << program_->errors();

    program_ = std::make_unique<Program>(xvfb_.display());
    ASSERT_TRUE(comes([&] { return stripIsPainted(); }));
    program_->terminate();
    ASSERT_TRUE(comes([&] { return program_->exitStatus().has_value(); }));
    EXPECT_EQ(program_->exitStatus(), 0) << program_->errors();
    EXPECT_EQ(program_->errors(), "");
}

TEST_F(ProgramTest, TheServersEndEndsItCleanly) {
    clickStrip();
    ASSERT_TRUE(opens());
    bystander_.reset();
    windowServer_.reset();
    connection_.reset();
    xvfb_.kill();
    ASSERT_TRUE(comes([&] { return program_->exitStatus().has_value(); }));
    EXPECT_EQ(program_->exitStatus(), 0) << program_->errors();
    EXPECT_EQ(program_->errors(), "");
}

TEST(ProgramWithoutADisplay, SaysSoInOneLineAndFails) {
    Program program("");
    ASSERT_TRUE(comes([&] { return program.exitStatus().has_value(); }));
    EXPECT_EQ(program.exitStatus(), 1);
    EXPECT_EQ(program.errors(), "Norvane: there is no X display to show itself on.\n");
}

}  // namespace
}  // namespace norvane
