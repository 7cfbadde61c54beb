#include "platform/linux/LinuxAppearance.h"

#include <map>
#include <string>
#include <utility>

#include "BusTest.h"
#include "PlayedService.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kAppearance = "org.freedesktop.appearance";
constexpr const char* kGnome = "org.gnome.desktop.interface";
constexpr const char* kPlasma = "org.kde.kdeglobals.KDE";

// A portal, as old or as broken as it is told to be. Values are in the text form of GVariant.
class Portal {
 public:
    enum class Knows { readOneOnly, readOnly, both, nothingForNow };

    Portal(const PrivateBus& bus, Knows knows, const std::string& colorScheme)
        : knows_(knows),
          service_(bus, "org.freedesktop.portal.Desktop", [this](const auto& call) { return answer(call); }) {
        set(kAppearance, "color-scheme", colorScheme);
    }

    // From now on, for whoever asks.
    void set(const std::string& group, const std::string& key, const std::string& value) {
        settings_["('" + group + "', '" + key + "')"] = value;
    }
    void emit(const std::string& group, const std::string& key, const std::string& value) const {
        service_.emit("/org/freedesktop/portal/desktop", "org.freedesktop.portal.Settings", "SettingChanged",
                      "('" + group + "', '" + key + "', <" + value + ">)");
    }
    void emitColorScheme(const std::string& value) const { emit(kAppearance, "color-scheme", value); }
    void emitAccentColor(const std::string& value) const { emit(kAppearance, "accent-color", value); }
    void answerAll() {
        knows_ = Knows::both;
        service_.goOn();
    }
    // How often that method was asked for that key.
    int asked(const std::string& method, const std::string& key = "color-scheme") const {
        int times = 0;
        for (const std::string& arguments : service_.argumentsOf(method))
            times += arguments.ends_with(" '" + key + "')") ? 1 : 0;
        return times;
    }
    // For the settings of motion, by the only method that the portal knows, or by all.
    int askedForMotion() const {
        return service_.count("ReadOne") + service_.count("Read") - asked("ReadOne") - asked("Read") -
               asked("ReadOne", "accent-color") - asked("Read", "accent-color");
    }

 private:
    PlayedService::Answer answer(const PlayedService::Call& call) const {
        if (knows_ == Knows::nothingForNow) return {.isLater = true};
        if (knows_ == (call.method == "ReadOne" ? Knows::readOnly : Knows::readOneOnly))
            return {.error = "org.freedesktop.DBus.Error.UnknownMethod"};
        const auto found = settings_.find(call.arguments);
        if (found == settings_.end()) return {.error = "org.freedesktop.portal.Error.NotFound"};
        return {call.method == "Read" ? "(<<" + found->second + ">>,)" : "(<" + found->second + ">,)"};
    }

    Knows knows_;
    std::map<std::string, std::string> settings_;
    PlayedService service_;
};

using Knows = Portal::Knows;

class AppearanceTest : public BusTest {
 protected:
    void begin() {
        appearance.reset();
        connection = std::make_unique<BusConnection>(queue, bus.address(), kAtOnce);
        appearance = std::make_unique<LinuxAppearance>(*connection, xSettings);
        told = 0;
        changes = appearance->onDidChange([this] { ++told; });
    }
    bool comesToBeDark(bool isDark = true) {
        return runUntil([&] { return appearance->isDark() == isDark; });
    }
    bool comesToHave(const std::optional<Color>& accent) {
        return runUntil([&] { return appearance->accentColor() == accent; });
    }

    Published<XSettings> xSettings;
    std::unique_ptr<BusConnection> connection;
    std::unique_ptr<LinuxAppearance> appearance;
    int told = 0;
    Cancellation changes;
};

TEST_F(AppearanceTest, IsAskedOfNewAndOldPortals) {
    struct Case {
        const char* name;
        Knows knows;
        const char* scheme;
        bool isDark;
        int readCalls;
    };
    for (const Case& c : {Case{"ReadOne only", Knows::readOneOnly, "uint32 1", true, 0},
                          Case{"Read only", Knows::readOnly, "uint32 1", true, 1},
                          Case{"light", Knows::both, "uint32 2", false, 0},
                          Case{"no preference, by Read", Knows::readOnly, "uint32 0", false, 1},
                          Case{"a number of the future", Knows::both, "uint32 3", false, 0}}) {
        const Portal portal(bus, c.knows, c.scheme);
        begin();
        EXPECT_FALSE(appearance->isDark()) << c.name;
        // It has heard the answer at the latest when it hears of what was sent after it.
        ASSERT_TRUE(
            runUntil([&] { return portal.asked("Read") == c.readCalls && portal.asked("ReadOne") == 1; }));
        if (!c.isDark) portal.emitColorScheme("uint32 1");
        EXPECT_TRUE(comesToBeDark()) << c.name;
        EXPECT_EQ(told, 1) << c.name;
    }
}

TEST_F(AppearanceTest, FollowsTheSettingAndNothingElse) {
    const Portal portal(bus, Knows::both, "uint32 2");
    begin();
    ASSERT_TRUE(runUntil([&] { return portal.asked("ReadOne") == 1; }));
    portal.emitColorScheme("uint32 1");
    EXPECT_TRUE(comesToBeDark());
    portal.emitColorScheme("uint32 1");
    portal.emitAccentColor("uint32 0");
    portal.emit(kGnome, "color-scheme", "uint32 0");
    portal.emit(kGnome, "reduced-motion", "uint32 1");
    portal.emitColorScheme("uint32 0");
    EXPECT_TRUE(comesToBeDark(false));
    EXPECT_EQ(told, 2);
    portal.emitColorScheme("<uint32 1>");
    EXPECT_TRUE(comesToBeDark());
    portal.emitColorScheme("'dark'");
    EXPECT_TRUE(comesToBeDark(false)) << "no number is no preference";
    EXPECT_EQ(told, 4);
}

TEST_F(AppearanceTest, HasTheAccentColourOfEachPortalThatComes) {
    begin();
    EXPECT_EQ(appearance->accentColor(), std::nullopt);
    for (const auto knows : {Knows::readOneOnly, Knows::readOnly}) {
        const bool isRed = knows == Knows::readOnly;
        Portal portal(bus, knows, "uint32 2");
        portal.set(kAppearance, "accent-color", isRed ? "(1.0, 0.5, 1.0)" : "(0.0, 0.5, 1.0)");
        EXPECT_TRUE(comesToHave(Color{isRed ? 1.0 : 0.0, 0.5, 1, 1}));
    }
    EXPECT_EQ(told, 2);
    const Portal without(bus, Knows::both, "uint32 2");
    EXPECT_TRUE(comesToHave(std::nullopt)) << "that portal has no such setting";
    EXPECT_EQ(told, 3);
}

TEST_F(AppearanceTest, TakesNoGarbageForAnAccentColour) {
    const Portal portal(bus, Knows::both, "uint32 1");
    begin();
    ASSERT_TRUE(comesToBeDark());
    ASSERT_TRUE(runUntil([&] { return portal.asked("ReadOne", "accent-color") == 1; }));
    told = 0;
    for (const char* const unset :
         {"(-1.0, -1.0, -1.0)", "(0.5, 0.5, 1.001)", "(0.0, -0.001, 0.0)", "(nan, 0.0, 0.0)",
          "(inf, 0.0, 0.0)", "'blue'", "(0.1, 0.2)", "(1, 1, 1)"}) {
        portal.emitAccentColor("(0.0, 0.0, 0.0)");
        portal.emitAccentColor("(0.0, 0.0, 0.0)");
        EXPECT_TRUE(comesToHave(Color{0, 0, 0, 1})) << unset;
        portal.emitAccentColor(unset);
        EXPECT_TRUE(comesToHave(std::nullopt)) << unset;
        EXPECT_EQ(std::exchange(told, 0), 2) << unset;
    }
    EXPECT_TRUE(appearance->isDark());
}

TEST_F(AppearanceTest, ReducesMotionByTheMostTrustedWord) {
    struct Case {
        const char* name;
        // Null where the portal has no such setting.
        const char* reducedMotion;
        const char* enableAnimations;
        const char* durationFactor;
        bool isReducedByX;
        bool isReduced;
    };
    for (const Case& c : {
             Case{"nobody says anything", nullptr, nullptr, nullptr, false, false},
             Case{"reduced", "uint32 1", "true", "'1'", false, true},
             Case{"no preference", "uint32 0", "false", "'0'", true, false},
             Case{"no number", "'1'", "true", "'0'", true, false},
             Case{"no animations", nullptr, "false", "'1'", false, true},
             Case{"animations", nullptr, "true", "'0'", true, false},
             Case{"at once, with decimals", nullptr, nullptr, "'0.00'", false, true},
             Case{"hardly slower than at once", nullptr, nullptr, "'0.001'", true, false},
             Case{"no factor", nullptr, nullptr, "''", true, true},
             Case{"a factor with a comma", nullptr, nullptr, "'0,0'", false, false},
             Case{"below 0", nullptr, nullptr, "'-1'", true, true},
             Case{"too small for a number", nullptr, nullptr, "'1e-999'", false, false},
             Case{"the X screen alone", nullptr, nullptr, nullptr, true, true},
         }) {
        Portal portal(bus, Knows::both, "uint32 0");
        if (c.reducedMotion != nullptr) portal.set(kAppearance, "reduced-motion", c.reducedMotion);
        if (c.enableAnimations != nullptr) portal.set(kGnome, "enable-animations", c.enableAnimations);
        if (c.durationFactor != nullptr) portal.set(kPlasma, "AnimationDurationFactor", c.durationFactor);
        xSettings.set({.reducesMotion = c.isReducedByX});
        begin();
        EXPECT_EQ(appearance->reducesMotion(), c.isReducedByX) << c.name << ", before the portal's word";
        ASSERT_TRUE(runUntil([&] { return portal.askedForMotion() == 3; })) << c.name;
        portal.emitColorScheme("uint32 1");  // heard after the answers
        ASSERT_TRUE(comesToBeDark()) << c.name;
        EXPECT_EQ(appearance->reducesMotion(), c.isReduced) << c.name;
    }
}

TEST_F(AppearanceTest, FollowsEachWordAboutMotion) {
    const Portal portal(bus, Knows::readOnly, "uint32 1");
    begin();
    ASSERT_TRUE(runUntil([&] { return appearance->isDark() && portal.askedForMotion() == 6; }));
    told = 0;
    bool reduces = false;
    const struct {
        const char* group;
        const char* key;
        const char* value;
    } words[] = {
        {kPlasma, "AnimationDurationFactor", "'0'"}, {kGnome, "enable-animations", "true"},
        {kAppearance, "reduced-motion", "uint32 1"}, {kAppearance, "reduced-motion", "'of another type'"},
        {kGnome, "enable-animations", "uint32 1"},   {kPlasma, "AnimationDurationFactor", "'none'"},
    };
    for (const auto& each : words) {
        reduces = !reduces;
        // The same word for another setting, or another group, is none.
        portal.emit(each.group, "text-scaling-factor", each.value);
        portal.emit("org.example", each.key, each.value);
        portal.emit(each.group, each.key, each.value);
        EXPECT_TRUE(runUntil([&] { return appearance->reducesMotion() == reduces; })) << each.value;
    }
    EXPECT_EQ(told, 6);
    xSettings.set({.reducesMotion = true});
    EXPECT_TRUE(appearance->reducesMotion()) << "no portal says anything any more";
    EXPECT_EQ(told, 7);
}

TEST_F(AppearanceTest, IsAsTheXScreenSaysWhereThePortalHasNoScheme) {
    xSettings.set({.isDark = true});
    const Portal portal(bus, Knows::both, "uint32 2");
    begin();
    EXPECT_TRUE(appearance->isDark());
    EXPECT_TRUE(comesToBeDark(false)) << "the portal has said light";
    told = 0;
    xSettings.set({});
    xSettings.set({.isDark = true});
    EXPECT_FALSE(appearance->isDark());
    EXPECT_EQ(told, 0);
    portal.emitColorScheme("uint32 0");
    EXPECT_TRUE(comesToBeDark()) << "no preference";
    xSettings.set({});
    EXPECT_FALSE(appearance->isDark());
    EXPECT_EQ(told, 2);
}

TEST_F(AppearanceTest, AsksPortalsThatComeLateOrAnswerLate) {
    begin();
    ASSERT_TRUE(hearsAll(*connection));
    Portal portal(bus, Knows::nothingForNow, "uint32 1");
    ASSERT_TRUE(runUntil([&] { return portal.asked("ReadOne") == 1; }));
    EXPECT_FALSE(appearance->isDark());
    portal.answerAll();
    EXPECT_TRUE(comesToBeDark());
}

TEST_F(AppearanceTest, GoesAwayAtAnyMoment) {
    Portal portal(bus, Knows::nothingForNow, "uint32 1");
    for (int turns = 0; turns < 30; ++turns) {
        begin();
        for (int turn = 0; turn < turns; ++turn)
            g_main_context_iteration(nullptr, FALSE);
    }
    const int before = portal.asked("ReadOne");
    begin();
    ASSERT_TRUE(runUntil([&] { return portal.asked("ReadOne") > before; }));
    appearance.reset();
    portal.answerAll();
    turnToTheEnd();
    BusConnection neverStarted(queue, bus.address(), {.firstAttempt = 1h});
    const LinuxAppearance other(neverStarted, xSettings);
}

TEST_F(AppearanceTest, IsLightWithoutABus) {
    for (const char* broken : {"", "nonsense", "unix:path=/nowhere/at/all"}) {
        BusConnection none(queue, broken, kAtOnce);
        const LinuxAppearance alone(none, xSettings);
        EXPECT_TRUE(hearsAll(none)) << "an error";
        EXPECT_FALSE(alone.isDark() || alone.reducesMotion()) << broken;
        xSettings.set({.reducesMotion = true, .isDark = true});
        EXPECT_TRUE(alone.isDark() && alone.reducesMotion()) << broken;
        xSettings.set({});
    }
}

}  // namespace
}  // namespace norvane
