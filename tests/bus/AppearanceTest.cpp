#include "platform/linux/LinuxAppearance.h"

#include <map>
#include <utility>

#include "BusTest.h"

namespace norvane {
namespace {

// The followed settings, as the portal is asked for them.
constexpr const char* kScheme = "'org.freedesktop.appearance', 'color-scheme'";
constexpr const char* kAccent = "'org.freedesktop.appearance', 'accent-color'";
constexpr const char* kMotion = "'org.freedesktop.appearance', 'reduced-motion'";
constexpr const char* kAnimations = "'org.gnome.desktop.interface', 'enable-animations'";
constexpr const char* kFactor = "'org.kde.kdeglobals.KDE', 'AnimationDurationFactor'";

// With values in the text form of GVariant.
using Settings = std::map<std::string, std::string>;

class AppearanceTest : public BusTest {
 protected:
    void begin() {
        appearance = std::make_unique<LinuxAppearance>(connection, xSettings);
        told = 0;
        changes = appearance->onDidChange([this] { ++told; });
    }
    // A portal that knows the given methods alone; without any it does not answer for now.
    void makePortal(const Settings& has, const std::string& methods = "ReadOne Read") {
        portal.reset();
        settings = has;
        knows = methods;
        portal = std::make_unique<PlayedService>(
            bus, kPortalName, [this](const PlayedService::Call& call) -> PlayedService::Answer {
                if (knows.empty()) return {.isLater = true};
                if ((knows + ' ').find(call.method + ' ') == std::string::npos)
                    return {.error = "org.freedesktop.DBus.Error.UnknownMethod"};
                const auto found = settings.find(call.arguments.substr(1, call.arguments.size() - 2));
                if (found == settings.end()) return {.error = "org.freedesktop.portal.Error.NotFound"};
                return {call.method == "Read" ? "(<<" + found->second + ">>,)"
                                              : "(<" + found->second + ">,)"};
            });
    }
    void say(const std::string& setting, const std::string& value) const {
        portal->emit(kPortalPath, "org.freedesktop.portal.Settings", "SettingChanged",
                     '(' + setting + ", <" + value + ">)");
    }
    bool isAskedForAll() {
        return runUntil([&] { return portal->count("ReadOne") == 5; });
    }
    bool comesToBeDark(bool isDark = true) {
        return runUntil([&] { return appearance->isDark() == isDark; });
    }
    bool comesToHave(const std::optional<Color>& accent) {
        return runUntil([&] { return appearance->accentColor() == accent; });
    }

    Settings settings;
    std::string knows;
    std::unique_ptr<PlayedService> portal;
    Published<XSettings> xSettings;
    BusConnection connection{queue, bus.address(), kAtOnce};
    std::unique_ptr<LinuxAppearance> appearance;
    int told = 0;
    Cancellation changes;
};

TEST_F(AppearanceTest, IsAskedOfNewOldAndLatePortals) {
    ASSERT_TRUE(hearsAll(connection));
    begin();
    for (const std::string methods : {"", "ReadOne", "Read", "ReadOne Read"}) {
        const double blue = static_cast<double>(methods.size()) / 16;
        makePortal({{kScheme, "uint32 1"}, {kAccent, "(0.0, 0.5, " + std::to_string(blue) + ')'}}, methods);
        ASSERT_TRUE(isAskedForAll());
        if (methods.empty()) {
            EXPECT_FALSE(appearance->isDark());
            knows = "ReadOne";
            portal->goOn();
        }
        EXPECT_TRUE(comesToBeDark()) << methods;
        EXPECT_TRUE(comesToHave(Color{0, 0.5, blue, 1})) << methods;
    }
    makePortal({});
    EXPECT_TRUE(comesToHave(std::nullopt)) << "that portal has no such setting";
}

TEST_F(AppearanceTest, FollowsThePortalOrElseTheXScreenAndTakesNoGarbage) {
    xSettings.set({.isDark = true});
    makePortal({{kScheme, "uint32 2"}});
    begin();
    EXPECT_TRUE(appearance->isDark());
    EXPECT_TRUE(comesToBeDark(false)) << "the portal has said light";
    ASSERT_TRUE(isAskedForAll());
    told = 0;
    xSettings.set({});
    xSettings.set({.isDark = true});
    EXPECT_EQ(told, 0);
    for (const char* const unsaid : {"uint32 0", "uint32 3", "'light'", "<1>"}) {
        say(kScheme, unsaid);
        EXPECT_TRUE(comesToBeDark()) << unsaid;
        for (const char* const other : {kAccent, kMotion, "'org.gnome.desktop.interface', 'color-scheme'"})
            say(other, "uint32 2");
        say(kScheme, unsaid);
        say(kScheme, "<uint32 2>");
        EXPECT_TRUE(comesToBeDark(false)) << unsaid;
        EXPECT_EQ(std::exchange(told, 0), 2) << unsaid;
    }
    for (const char* const unset :
         {"(-1.0, -1.0, -1.0)", "(0.5, 0.5, 1.001)", "(0.0, -0.001, 0.0)", "(nan, 0.0, 0.0)",
          "(inf, 0.0, 0.0)", "'blue'", "(0.1, 0.2)", "(1, 1, 1)"}) {
        say(kAccent, "(0.0, 0.0, 0.0)");
        EXPECT_TRUE(comesToHave(Color{0, 0, 0, 1})) << unset;
        say(kAccent, unset);
        EXPECT_TRUE(comesToHave(std::nullopt)) << unset;
        EXPECT_EQ(std::exchange(told, 0), 2) << unset;
    }
}

TEST_F(AppearanceTest, ReducesMotionByTheMostTrustedWord) {
    const struct {
        const char* name;
        Settings settings;
        bool isReducedByX;
        bool isReduced;
    } cases[] = {
        {"reduced", {{kMotion, "uint32 1"}, {kAnimations, "true"}, {kFactor, "'1'"}}, false, true},
        {"no preference", {{kMotion, "uint32 0"}, {kAnimations, "false"}, {kFactor, "'0'"}}, true, false},
        {"no number", {{kMotion, "'1'"}, {kAnimations, "true"}, {kFactor, "'0'"}}, true, false},
        {"no animations", {{kAnimations, "false"}, {kFactor, "'1'"}}, false, true},
        {"at once, with decimals", {{kFactor, "'0.00'"}}, false, true},
        {"hardly slower than at once", {{kFactor, "'0.001'"}}, true, false},
        {"no factor", {{kFactor, "''"}}, true, true},
        {"a factor with a comma", {{kFactor, "'0,0'"}}, false, false},
        {"below 0", {{kFactor, "'-1'"}}, true, true},
        {"too small for a number", {{kFactor, "'1e-999'"}}, false, false},
        {"the X screen alone", {}, true, true},
    };
    for (const auto& each : cases) {
        // First asked, then told.
        for (const bool isTold : {false, true}) {
            makePortal(isTold ? Settings() : each.settings);
            xSettings.set({.reducesMotion = each.isReducedByX});
            begin();
            EXPECT_EQ(appearance->reducesMotion(), each.isReducedByX) << each.name << ", before any word";
            ASSERT_TRUE(isAskedForAll()) << each.name;
            if (isTold) {
                for (const auto& [setting, value] : each.settings)
                    say(setting, value);
            }
            say(kScheme, "uint32 1");  // heard after the answers
            ASSERT_TRUE(comesToBeDark()) << each.name;
            EXPECT_EQ(appearance->reducesMotion(), each.isReduced) << each.name << isTold;
        }
    }
}

}  // namespace
}  // namespace norvane
