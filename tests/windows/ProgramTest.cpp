#include "Program.h"

#include <memory>
#include <set>

#include "DesktopTest.h"

namespace norvane {
namespace {

constexpr int kDashboardWidth = 520;
constexpr int kWelcomeWidth = 340;

// The real program on a display without a window manager, as its user clicks it.
class ProgramTest : public DesktopTest {
 protected:
    void begin() override { start(); }
    void start(bool hasSeenWelcome = true) {
        program_.reset();  // there is one on a display
        program_ = std::make_unique<Program>(xvfb_.display(), hasSeenWelcome);
        ASSERT_TRUE(comes([&] { return colours(kStrip) > 8; })) << program_->errors();
    }
    std::size_t colours(const PixelRect& part) const {
        const auto pixels = bystander_->pixels(part);
        return std::set<std::uint32_t>(pixels.begin(), pixels.end()).size();
    }
    // The place of a popover, by its width, once its window is there and painted.
    std::optional<PixelRect> popover(int width) const {
        for (const xcb_window_t window : bystander_->windows()) {
            const PixelRect frame = bystander_->frameOf(window);
            if (frame.width == width && colours(frame) > 32) return frame;
        }
        return std::nullopt;
    }
    void clickAndExpect(int width) {
        click(kStrip.x + 27, 11);
        ASSERT_TRUE(comes([&] { return popover(width).has_value(); })) << program_->errors();
    }
    void expectEnd(int status, const std::string& errors) {
        ASSERT_TRUE(comes([&] { return program_->exitStatus().has_value(); }));
        EXPECT_EQ(program_->exitStatus(), status);
        EXPECT_EQ(program_->errors(), errors);
    }

    std::unique_ptr<Program> program_;
};

TEST_F(ProgramTest, AClickOpensTheDashboardUnderTheItemAndEveryWayClosesIt) {
    bystander_->open({20, 300, 100, 100});
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"a second click on the item", [&] { click(kStrip.x + 27, 11); }},
        {"Esc", [&] { type("Escape"); }},
        {"a click on another window", [&] { click(70, 350); }},
        {"a click on the empty desktop", [&] { click(400, 600); }},
    };
    for (const auto& [name, close] : ways) {
        SCOPED_TRACE(name);
        clickAndExpect(kDashboardWidth);
        const PixelRect frame = popover(kDashboardWidth).value_or(PixelRect{});
        EXPECT_EQ(frame.x + frame.width, Xvfb::kWidth - 8) << "inside the screen";
        EXPECT_EQ(frame.y, 28) << "below the item";
        click(frame.x + 200, frame.y + 8);
        EXPECT_TRUE(popover(kDashboardWidth)) << "a click inside closed it";
        close();
        EXPECT_TRUE(comes([&] { return !popover(kDashboardWidth); }));
    }
    EXPECT_EQ(bystander_->presses(), 1) << "the click that closed it reached the other window";
}

TEST_F(ProgramTest, WelcomesUntilThatIsSeenAndEndsBySignalsWithTheServerAndWithoutOne) {
    start(false);
    ASSERT_TRUE(comes([&] { return popover(kWelcomeWidth).has_value(); })) << program_->errors();
    type("Escape");
    EXPECT_TRUE(comes([&] { return !popover(kWelcomeWidth); }));
    clickAndExpect(kWelcomeWidth);  // dismissed is not seen
    program_->terminate();
    expectEnd(0, "");
    start();
    clickAndExpect(kDashboardWidth);
    bystander_.reset();
    windowServer_.reset();
    connection_.reset();
    xvfb_.end();
    expectEnd(0, "");
    program_ = std::make_unique<Program>("");
    expectEnd(1, "Norvane: there is no X display to show itself on.\n");
}

}  // namespace
}  // namespace norvane
