#include "platform/linux/X11Settings.h"

#include "DesktopTest.h"
#include "linux/XSettingsBytes.h"

namespace norvane {
namespace {

XSettingsBytes still() {
    return XSettingsBytes().integer("Gtk/EnableAnimations", 0);
}
XSettingsBytes dark() {
    return XSettingsBytes().string("Net/ThemeName", "Plain-dark");
}
constexpr XSettings kStill{.reducesMotion = true};
constexpr XSettings kDark{.isDark = true};
constexpr const char* kSelection = "_XSETTINGS_S0";
constexpr const char* kSettings = "_XSETTINGS_SETTINGS";

// A settings manager, another program on the same screen. It dies when destroyed.
struct PlayedManager : Bystander {
    // By the protocol: the settings are there first.
    PlayedManager(const std::string& display, const XSettingsBytes& settings)
        : Bystander(display), window(open({-10, -10, 1, 1})) {
        write(settings.whole());
        own(kSelection, window);
        announce(kSelection, window);
    }
    void write(const std::string& bytes) const { writeTo(window, bytes); }
    void writeTo(xcb_window_t to, const std::string& bytes) const {
        set(to, kSettings, atom(kSettings), 8, bytes.data(), bytes.size());
    }

    xcb_window_t window;
};

// With the extension that tells of selections, and without.
class X11SettingsTest : public DesktopTest, public testing::WithParamInterface<bool> {
 protected:
    void begin() override {
        connect({.fixes = GetParam()});
        settings_ = std::make_unique<X11Settings>(*connection_);
    }
    bool come(const XSettings& wanted) {
        return comes([&] { return settings_->current().get() == wanted; });
    }

    std::unique_ptr<X11Settings> settings_;
};

INSTANTIATE_TEST_SUITE_P(Servers, X11SettingsTest, testing::Bool(),
                         [](const auto& each) { return each.param ? "WithFixes" : "WithoutFixes"; });

TEST_P(X11SettingsTest, FollowsManagersAsTheyComeGoAndChange) {
    int told = 0;
    const Cancellation watch = settings_->current().observe([&](const XSettings&) { ++told; });
    auto manager = std::make_unique<PlayedManager>(xvfb_.display(), still());
    EXPECT_TRUE(come(kStill));
    EXPECT_EQ(X11Settings(*connection_).current().get(), kStill) << "one that begins after the manager";
    manager->write(dark().whole(XSettingsBytes::Order::bigEndian));
    EXPECT_TRUE(come(kDark));
    manager->write(dark().integer("Some/Thing", 1).whole());
    settle();
    EXPECT_EQ(told, 2) << "nothing of ours has changed";
    const xcb_window_t before = manager->window;
    manager.reset();
    while (bystander_->frameOf(before) != PixelRect{}) {
    }
    manager = std::make_unique<PlayedManager>(xvfb_.display(), still());
    EXPECT_EQ(manager->window, before);
    EXPECT_TRUE(come(kStill)) << "another one, though with the same window's id";
    manager.reset();
    EXPECT_TRUE(come({})) << "it has died";
    manager = std::make_unique<PlayedManager>(xvfb_.display(), still());
    const PlayedManager second(xvfb_.display(), dark());
    EXPECT_TRUE(come(kDark));
    manager->write(still().string("Net/ThemeName", "x-dark").whole());
    manager->announce(kSelection, manager->window);
    manager.reset();
    settle();
    EXPECT_EQ(settings_->current().get(), kDark) << "who is no manager any more says nothing";
    second.own(kSelection, XCB_NONE);
    second.announce(kSelection, second.window);
    EXPECT_TRUE(come({}));
}

TEST_P(X11SettingsTest, TakesNoGarbage) {
    const PlayedManager manager(xvfb_.display(), still());
    const std::string whole = still().whole();
    // More than is read, in pieces as the server takes them.
    const std::string large(200'000, 'x');
    const std::string beyond = XSettingsBytes().string("A/B", large).string("B/A", large).whole();
    const struct {
        const char* name;
        std::string bytes;
        std::uint8_t bits = 8;
        bool isOfItsType = true;
    } cases[] = {
        {"noise", std::string(10'000, '\xFF')},
        {"a byte is missing", whole.substr(0, whole.size() - 1)},
        {"nothing", ""},
        {"in numbers", whole, 32},
        {"of another type", whole, 8, false},
        {"beyond the bound", beyond + whole},
    };
    for (const auto& c : cases) {
        manager.write(whole);
        ASSERT_TRUE(come(kStill)) << c.name << ", after good settings";
        const xcb_atom_t type = c.isOfItsType ? manager.atom(kSettings) : xcb_atom_t{XCB_ATOM_STRING};
        manager.set(manager.window, kSettings, type, c.bits, c.bytes.data(), c.bytes.size() * 8 / c.bits);
        EXPECT_TRUE(come({})) << c.name;
    }
    manager.write(whole);
    ASSERT_TRUE(come(kStill));
    manager.writeTo(manager.root(), whole);
    manager.own(kSelection, manager.root());
    manager.announce(kSelection, manager.window);
    EXPECT_TRUE(come({})) << "the root is no manager's window";
}

}  // namespace
}  // namespace norvane
