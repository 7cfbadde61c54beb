#include "platform/linux/X11Settings.h"

#include "DesktopTest.h"
#include "linux/XSettingsBytes.h"

namespace norvane {
namespace {

// A settings manager, another program on the same screen. It dies when
// destroyed.
class PlayedManager {
 public:
    explicit PlayedManager(const std::string& display)
        : program_(display), window_(program_.open({-10, -10, 1, 1})) {}

    // By the protocol: the settings are there first.
    PlayedManager& begin(const XSettingsBytes& settings) {
        write(settings.whole());
        own(window_);
        announce();
        return *this;
    }
    void own(xcb_window_t window) { program_.own("_XSETTINGS_S0", window); }
    void announce() { program_.announce("_XSETTINGS_S0", window_); }
    // In units of 1, 2 or 4 bytes; of the protocol's type unless another one is
    // named.
    void write(const std::string& bytes, std::uint8_t unit = 1, const char* type = "_XSETTINGS_SETTINGS") {
        writeTo(window_, bytes, unit, type);
    }
    void writeTo(xcb_window_t window, const std::string& bytes, std::uint8_t unit = 1,
                 const char* type = "_XSETTINGS_SETTINGS") {
        xcb_change_property(program_.get(), XCB_PROP_MODE_REPLACE, window,
                            program_.atom("_XSETTINGS_SETTINGS"), program_.atom(type),
                            static_cast<std::uint8_t>(8 * unit),
                            static_cast<std::uint32_t>(bytes.size() / unit), bytes.data());
        program_.sync();
    }
    void remove() {
        xcb_delete_property(program_.get(), window_, program_.atom("_XSETTINGS_SETTINGS"));
        program_.sync();
    }
    // Its window goes; the program stays.
    void close() { program_.close(window_); }
    Bystander& program() { return program_; }

 private:
    Bystander program_;
    xcb_window_t window_;
};

// With the extension that tells of selections, and without.
class X11SettingsTest : public DesktopTest, public testing::WithParamInterface<bool> {
 protected:
    void begin() override { connect({.fixes = GetParam()}); }

    bool come(const X11Settings& settings, const XSettings& wanted) {
        return comes([&] { return settings.current().get() == wanted; });
    }
    static XSettingsBytes still() { return XSettingsBytes().integer("Gtk/EnableAnimations", 0); }
    static XSettingsBytes dark() { return XSettingsBytes().string("Net/ThemeName", "Plain-dark"); }
};

INSTANTIATE_TEST_SUITE_P(Servers, X11SettingsTest, testing::Bool(),
                         [](const auto& each) { return each.param ? "WithFixes" : "WithoutFixes"; });

constexpr XSettings kStill{.reducesMotion = true};
constexpr XSettings kDark{.isDark = true};

TEST_P(X11SettingsTest, FollowsManagersAsTheyComeGoAndChange) {
    X11Settings settings(*connection_);
    int told = 0;
    const Cancellation watch = settings.current().observe([&](const XSettings&) { ++told; });
    EXPECT_EQ(settings.current().get(), XSettings());
    {
        PlayedManager late(xvfb_.display());
        late.begin(still());
        EXPECT_TRUE(come(settings, kStill));
        EXPECT_EQ(X11Settings(*connection_).current().get(), kStill) << "one that begins after the manager";
        late.write(dark().whole(XSettingsBytes::Order::bigEndian));
        EXPECT_TRUE(come(settings, kDark));
        late.write(dark().integer("Some/Thing", 1).whole());
        settle();
        EXPECT_EQ(told, 2) << "nothing of ours has changed";
    }
    EXPECT_TRUE(come(settings, {})) << "it has died";
    PlayedManager closing(xvfb_.display());
    closing.begin(dark());
    EXPECT_TRUE(come(settings, kDark));
    closing.close();
    EXPECT_TRUE(come(settings, {})) << "its window has gone";
    EXPECT_EQ(told, 5);
}

TEST_P(X11SettingsTest, GoesOverToTheManagerThatTakesThePlace) {
    X11Settings settings(*connection_);
    PlayedManager first(xvfb_.display());
    first.begin(still());
    ASSERT_TRUE(come(settings, kStill));
    PlayedManager second(xvfb_.display());
    second.begin(dark());
    EXPECT_TRUE(come(settings, kDark));
    first.write(XSettingsBytes(still()).string("Net/ThemeName", "x-dark").whole());
    first.announce();
    first.close();
    settle();
    EXPECT_EQ(settings.current().get(), kDark) << "who is no manager any more says nothing";
    second.own(XCB_NONE);
    second.announce();
    EXPECT_TRUE(come(settings, {}));
}

TEST_P(X11SettingsTest, TakesNoGarbage) {
    X11Settings settings(*connection_);
    PlayedManager manager(xvfb_.display());
    manager.begin(still());
    ASSERT_TRUE(come(settings, kStill));
    const std::string whole = still().whole();
    // More than is read, in pieces as the server takes them.
    XSettingsBytes enormous;
    enormous.string("Some/Text", std::string(200'000, 'x')).string("Other/Text", std::string(200'000, 'x'));
    const std::string beyond = enormous.integer("Gtk/EnableAnimations", 0).whole();
    const struct {
        const char* name;
        std::function<void()> write;
    } cases[] = {
        {"noise", [&] { manager.write(std::string(10'000, '\xFF')); }},
        {"a byte is missing", [&] { manager.write(whole.substr(0, whole.size() - 1)); }},
        {"nothing", [&] { manager.write(""); }},
        {"in numbers", [&] { manager.write(whole, 4); }},
        {"a property of another type", [&] { manager.write(whole, 1, "STRING"); }},
        {"no property", [&] { manager.remove(); }},
        {"beyond the bound", [&] { manager.write(beyond); }},
    };
    for (const auto& c : cases) {
        c.write();
        EXPECT_TRUE(come(settings, {})) << c.name;
        manager.write(whole);
        EXPECT_TRUE(come(settings, kStill)) << c.name << ", and good settings again";
    }
    manager.own(manager.program().root());
    manager.writeTo(manager.program().root(), whole);
    manager.announce();
    EXPECT_TRUE(come(settings, {})) << "the root is no manager's window";
}

TEST_P(X11SettingsTest, EndsWithTheServer) {
    PlayedManager manager(xvfb_.display());
    manager.begin(still());
    X11Settings settings(*connection_);
    EXPECT_EQ(settings.current().get(), kStill);
    bool hasEnded = false;
    connection_->setEndHandler([&] { hasEnded = true; });
    bystander_.reset();
    xvfb_.kill();
    EXPECT_TRUE(comes([&] { return hasEnded; }));
    EXPECT_EQ(X11Settings(*connection_).current().get(), XSettings());
}

}  // namespace
}  // namespace norvane
