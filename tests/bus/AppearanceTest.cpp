#include <gtest/gtest.h>

#include <gio/gio.h>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "linux/RunLoop.h"
#include "platform/linux/GVariantPointer.h"
#include "platform/linux/LinuxAppearance.h"
#include "platform/linux/LinuxMainQueue.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kDescription = R"(<node><interface name='org.freedesktop.portal.Settings'>
    <method name='ReadOne'><arg direction='in' type='s'/><arg direction='in' type='s'/>
        <arg direction='out' type='v'/></method>
    <method name='Read'><arg direction='in' type='s'/><arg direction='in' type='s'/>
        <arg direction='out' type='v'/></method>
    <signal name='SettingChanged'><arg type='s'/><arg type='s'/><arg type='v'/></signal>
    </interface></node>)";

GDBusConnection* connectTo(const std::string& address) {
    const auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                         G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, nullptr, nullptr);
}

// A portal on the bus, as old or as broken as it is told to be.
class Portal {
 public:
    enum class Knows { readOneOnly, readOnly, both };
    enum class Answers { atOnce, never };

    Portal(const std::string& address, Knows knows, Answers answers, GVariant* colorScheme)
        : knows_(knows), answers_(answers) {
        set("org.freedesktop.appearance", "color-scheme", colorScheme);
        connection_ = connectTo(address);
        GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(kDescription, nullptr);
        static const GDBusInterfaceVTable calls{&Portal::called, nullptr, nullptr, {}};
        object_ = g_dbus_connection_register_object(connection_, "/org/freedesktop/portal/desktop",
                                                    node->interfaces[0], &calls, this, nullptr, nullptr);
        g_dbus_node_info_unref(node);
        callBus("RequestName", g_variant_new("(su)", "org.freedesktop.portal.Desktop", 0));
    }
    ~Portal() {
        g_dbus_connection_unregister_object(connection_, object_);  // calls may be on their way to it
        for (GDBusMethodInvocation* const each : unanswered_)
            g_object_unref(each);
        g_dbus_connection_close_sync(connection_, nullptr, nullptr);
        g_object_unref(connection_);
    }
    Portal(const Portal&) = delete;
    Portal& operator=(const Portal&) = delete;

    void emit(const char* group, const char* key, GVariant* value) {
        g_dbus_connection_emit_signal(connection_, nullptr, "/org/freedesktop/portal/desktop",
                                      "org.freedesktop.portal.Settings", "SettingChanged",
                                      g_variant_new("(ssv)", group, key, value), nullptr);
    }
    void emitColorScheme(GVariant* value) { emit("org.freedesktop.appearance", "color-scheme", value); }
    void emitAccentColor(GVariant* value) { emit("org.freedesktop.appearance", "accent-color", value); }
    // What it knows, from the start or from now on.
    void set(const char* group, const char* key, GVariant* value) {
        settings_[{group, key}].reset(g_variant_ref_sink(value));
    }
    void setAccentColor(GVariant* value) { set("org.freedesktop.appearance", "accent-color", value); }
    void answerAll() {
        for (GDBusMethodInvocation* const each : unanswered_)
            answer(each);
        unanswered_.clear();
    }

    int readOneCalls = 0;
    int readCalls = 0;
    int accentCalls = 0;
    int otherCalls = 0;

 private:
    using Name = std::pair<std::string, std::string>;  // group and key

    void callBus(const char* method, GVariant* parameters) {
        GVariant* const result = g_dbus_connection_call_sync(
            connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
            parameters, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        g_variant_unref(result);
    }

    static void called(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                       GVariant* parameters, GDBusMethodInvocation* invocation, gpointer portal) {
        auto& self = *static_cast<Portal*>(portal);
        const bool isReadOne = std::string_view(method) == "ReadOne";
        const std::string key = nameIn(parameters).second;
        ++(key == "accent-color"   ? self.accentCalls
           : key != "color-scheme" ? self.otherCalls
           : isReadOne             ? self.readOneCalls
                                   : self.readCalls);
        if (self.answers_ == Answers::never) {
            self.unanswered_.push_back(invocation);
        } else if (isReadOne ? self.knows_ == Knows::readOnly : self.knows_ == Knows::readOneOnly) {
            g_dbus_method_invocation_return_error_literal(invocation, G_DBUS_ERROR,
                                                          G_DBUS_ERROR_UNKNOWN_METHOD, "no such method");
        } else {
            self.answer(invocation);
        }
    }

    static Name nameIn(GVariant* parameters) {
        const gchar* group = nullptr;
        const gchar* key = nullptr;
        g_variant_get(parameters, "(&s&s)", &group, &key);
        return {group, key};
    }

    void answer(GDBusMethodInvocation* invocation) {
        const std::string_view method = g_dbus_method_invocation_get_method_name(invocation);
        GVariant* const set = settings_[nameIn(g_dbus_method_invocation_get_parameters(invocation))].get();
        if (set == nullptr) {
            g_dbus_method_invocation_return_dbus_error(invocation, "org.freedesktop.portal.Error.NotFound",
                                                       "no such setting");
            return;
        }
        GVariant* const value = method == "Read" ? g_variant_new_variant(set) : set;
        g_dbus_method_invocation_return_value(invocation, g_variant_new("(v)", value));
    }

    const Knows knows_;
    const Answers answers_;
    std::map<Name, GVariantPointer> settings_;
    GDBusConnection* connection_ = nullptr;
    guint object_ = 0;
    std::vector<GDBusMethodInvocation*> unanswered_;
};

class AppearanceTest : public testing::Test {
 protected:
    AppearanceTest() : bus_(g_test_dbus_new(G_TEST_DBUS_NONE)) {
        g_test_dbus_up(bus_);
        address = g_test_dbus_get_bus_address(bus_);
    }
    ~AppearanceTest() override {
        g_test_dbus_down(bus_);
        g_object_unref(bus_);
    }

    std::string address;
    LinuxMainQueue queue;
    Published<XSettings> xSettings;

 private:
    GTestDBus* const bus_;
};

constexpr BusConnection::Pace kAtOnce{.firstAttempt = 0ns};

GVariant* scheme(guint32 number) {
    return g_variant_new_uint32(number);
}

TEST_F(AppearanceTest, IsAskedOfNewAndOldPortals) {
    struct Case {
        const char* name;
        Portal::Knows knows;
        guint32 scheme;
        bool isDark;
        int readCalls;
    };
    for (const Case& c :
         {Case{"ReadOne only", Portal::Knows::readOneOnly, 1, true, 0},
          Case{"Read only", Portal::Knows::readOnly, 1, true, 1},
          Case{"both", Portal::Knows::both, 1, true, 0}, Case{"light", Portal::Knows::both, 2, false, 0},
          Case{"no preference, by Read", Portal::Knows::readOnly, 0, false, 1},
          Case{"a number of the future", Portal::Knows::both, 3, false, 0}}) {
        Portal portal(address, c.knows, Portal::Answers::atOnce, scheme(c.scheme));
        BusConnection bus(queue, address, kAtOnce);
        LinuxAppearance appearance(bus, xSettings);
        EXPECT_FALSE(appearance.isDark()) << c.name;
        int told = 0;
        const auto subscription = appearance.onDidChange([&] { ++told; });
        // It has heard the answer at the latest when it hears of what was sent after it.
        ASSERT_TRUE(runUntil([&] { return portal.readCalls == c.readCalls && portal.readOneCalls == 1; }));
        if (c.isDark) {
            EXPECT_TRUE(runUntil([&] { return appearance.isDark(); })) << c.name;
        } else {
            portal.emitColorScheme(scheme(1));
            EXPECT_TRUE(runUntil([&] { return appearance.isDark(); })) << c.name;
        }
        EXPECT_EQ(told, 1) << c.name;
    }
}

TEST_F(AppearanceTest, FollowsTheSettingAndNothingElse) {
    Portal portal(address, Portal::Knows::both, Portal::Answers::atOnce, scheme(2));
    BusConnection bus(queue, address, kAtOnce);
    LinuxAppearance appearance(bus, xSettings);
    int told = 0;
    const auto subscription = appearance.onDidChange([&] { ++told; });
    ASSERT_TRUE(runUntil([&] { return portal.readOneCalls == 1; }));
    portal.emitColorScheme(scheme(1));
    EXPECT_TRUE(runUntil([&] { return appearance.isDark(); }));
    portal.emitColorScheme(scheme(1));
    portal.emit("org.freedesktop.appearance", "accent-color", scheme(0));
    portal.emit("org.gnome.desktop.interface", "color-scheme", scheme(0));
    portal.emit("org.gnome.desktop.interface", "reduced-motion", scheme(1));
    portal.emitColorScheme(scheme(0));
    EXPECT_TRUE(runUntil([&] { return !appearance.isDark(); }));
    EXPECT_EQ(told, 2);
    portal.emitColorScheme(g_variant_new_variant(scheme(1)));
    EXPECT_TRUE(runUntil([&] { return appearance.isDark(); }));
    portal.emitColorScheme(g_variant_new_string("dark"));
    EXPECT_TRUE(runUntil([&] { return !appearance.isDark(); })) << "no number is no preference";
    EXPECT_EQ(told, 4);
}

GVariant* color(double red, double green, double blue) {
    return g_variant_new("(ddd)", red, green, blue);
}

TEST_F(AppearanceTest, HasTheAccentColourOfEachPortalThatComes) {
    BusConnection bus(queue, address, kAtOnce);
    LinuxAppearance appearance(bus, xSettings);
    int told = 0;
    const auto subscription = appearance.onDidChange([&] { ++told; });
    EXPECT_EQ(appearance.accentColor(), std::nullopt);
    for (const auto knows : {Portal::Knows::readOneOnly, Portal::Knows::readOnly}) {
        const double red = knows == Portal::Knows::readOnly ? 1 : 0;
        Portal portal(address, knows, Portal::Answers::atOnce, scheme(2));
        portal.setAccentColor(color(red, 0.5, 1));
        EXPECT_TRUE(runUntil([&] { return appearance.accentColor() == Color{red, 0.5, 1, 1}; }));
    }
    EXPECT_EQ(told, 2);
    const Portal without(address, Portal::Knows::both, Portal::Answers::atOnce, scheme(2));
    EXPECT_TRUE(runUntil([&] { return !appearance.accentColor(); })) << "that portal has no such setting";
    EXPECT_EQ(told, 3);
}

TEST_F(AppearanceTest, FollowsTheAccentColourAndTakesNoGarbageForOne) {
    Portal portal(address, Portal::Knows::both, Portal::Answers::atOnce, scheme(1));
    BusConnection bus(queue, address, kAtOnce);
    LinuxAppearance appearance(bus, xSettings);
    ASSERT_TRUE(runUntil([&] { return appearance.isDark() && portal.accentCalls == 1; }));
    int told = 0;
    const auto subscription = appearance.onDidChange([&] { ++told; });
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    const Color black{0, 0, 0, 1};
    for (GVariant* const unset :
         {color(-1, -1, -1), color(0.5, 0.5, 1.001), color(0, -0.001, 0), color(none, 0, 0),
          color(0, none, 0), color(0, 0, none), color(endless, 0, 0), scheme(1), g_variant_new_string("blue"),
          g_variant_new("(dd)", 0.1, 0.2), g_variant_new("(uuu)", 1, 1, 1)}) {
        g_variant_ref_sink(unset);
        gchar* const text = g_variant_print(unset, TRUE);
        portal.emitAccentColor(color(0, 0, 0));
        portal.emitAccentColor(color(0, 0, 0));
        EXPECT_TRUE(runUntil([&] { return appearance.accentColor() == black; })) << text;
        portal.emitAccentColor(unset);
        EXPECT_TRUE(runUntil([&] { return !appearance.accentColor(); })) << text;
        EXPECT_EQ(std::exchange(told, 0), 2) << text;
        g_free(text);
        g_variant_unref(unset);
    }
    EXPECT_TRUE(appearance.isDark());
}

constexpr const char* kAppearance = "org.freedesktop.appearance";
constexpr const char* kGnome = "org.gnome.desktop.interface";
constexpr const char* kPlasma = "org.kde.kdeglobals.KDE";

TEST_F(AppearanceTest, ReducesMotionByTheMostTrustedWord) {
    struct Case {
        const char* name;
        // As GVariant writes them; null where the portal has no such setting.
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
             Case{"a number of the future", "uint32 2", "false", "'0'", true, false},
             Case{"no number", "'1'", "true", "'0'", true, false},
             Case{"a signed number", "1", nullptr, nullptr, false, false},
             Case{"no animations", nullptr, "false", "'1'", false, true},
             Case{"animations", nullptr, "true", "'0'", true, false},
             Case{"a number for a switch", nullptr, "uint32 0", nullptr, false, false},
             Case{"at once", nullptr, nullptr, "'0'", false, true},
             Case{"at once, with decimals", nullptr, nullptr, "'0.00'", false, true},
             Case{"hardly slower than at once", nullptr, nullptr, "'0.001'", true, false},
             Case{"slowly", nullptr, "'false'", "'2.5'", true, false},
             Case{"a factor that is no text", nullptr, nullptr, "0.0", false, false},
             Case{"no factor", nullptr, nullptr, "''", true, true},
             Case{"a factor with a tail", nullptr, nullptr, "'0x'", false, false},
             Case{"a factor with a comma", nullptr, nullptr, "'0,0'", false, false},
             Case{"below 0", nullptr, nullptr, "'-1'", true, true},
             Case{"no finite factor", nullptr, nullptr, "'inf'", true, true},
             Case{"too small for a number", nullptr, nullptr, "'1e-999'", false, false},
             Case{"the X screen alone", nullptr, nullptr, nullptr, true, true},
         }) {
        Portal portal(address, Portal::Knows::both, Portal::Answers::atOnce, scheme(0));
        const auto set = [&](const char* group, const char* key, const char* value) {
            if (value != nullptr) portal.set(group, key, g_variant_new_parsed(value));
        };
        set(kAppearance, "reduced-motion", c.reducedMotion);
        set(kGnome, "enable-animations", c.enableAnimations);
        set(kPlasma, "AnimationDurationFactor", c.durationFactor);
        xSettings.set({.reducesMotion = c.isReducedByX});
        BusConnection bus(queue, address, kAtOnce);
        LinuxAppearance appearance(bus, xSettings);
        EXPECT_EQ(appearance.reducesMotion(), c.isReducedByX) << c.name << ", before the portal's word";
        ASSERT_TRUE(runUntil([&] { return portal.otherCalls == 3; })) << c.name;
        portal.emitColorScheme(scheme(1));  // heard after the answers
        ASSERT_TRUE(runUntil([&] { return appearance.isDark(); })) << c.name;
        EXPECT_EQ(appearance.reducesMotion(), c.isReduced) << c.name;
    }
}

TEST_F(AppearanceTest, FollowsEachWordAboutMotion) {
    Portal portal(address, Portal::Knows::readOnly, Portal::Answers::atOnce, scheme(1));
    BusConnection bus(queue, address, kAtOnce);
    LinuxAppearance appearance(bus, xSettings);
    ASSERT_TRUE(runUntil([&] { return appearance.isDark() && portal.otherCalls == 6; }));
    int told = 0;
    const auto subscription = appearance.onDidChange([&] { ++told; });
    bool reduces = false;
    const struct {
        const char* group;
        const char* key;
        const char* value;
    } changes[] = {
        {kPlasma, "AnimationDurationFactor", "'0'"}, {kGnome, "enable-animations", "true"},
        {kAppearance, "reduced-motion", "uint32 1"}, {kAppearance, "reduced-motion", "'of another type'"},
        {kGnome, "enable-animations", "uint32 1"},   {kPlasma, "AnimationDurationFactor", "'none'"},
    };
    for (const auto& each : changes) {
        reduces = !reduces;
        // The same word for another setting, or another group, is none.
        portal.emit(each.group, "text-scaling-factor", g_variant_new_parsed(each.value));
        portal.emit("org.example", each.key, g_variant_new_parsed(each.value));
        portal.emit(each.group, each.key, g_variant_new_parsed(each.value));
        EXPECT_TRUE(runUntil([&] { return appearance.reducesMotion() == reduces; })) << each.value;
    }
    EXPECT_EQ(told, 6);
    xSettings.set({.reducesMotion = true});
    EXPECT_TRUE(appearance.reducesMotion()) << "no portal says anything any more";
    EXPECT_EQ(told, 7);
}

TEST_F(AppearanceTest, IsAsTheXScreenSaysWhereThePortalHasNoScheme) {
    xSettings.set({.isDark = true});
    Portal portal(address, Portal::Knows::both, Portal::Answers::atOnce, scheme(2));
    BusConnection bus(queue, address, kAtOnce);
    LinuxAppearance appearance(bus, xSettings);
    EXPECT_TRUE(appearance.isDark());
    EXPECT_TRUE(runUntil([&] { return !appearance.isDark(); })) << "the portal has said light";
    int told = 0;
    const auto subscription = appearance.onDidChange([&] { ++told; });
    xSettings.set({});
    xSettings.set({.isDark = true});
    EXPECT_FALSE(appearance.isDark());
    EXPECT_EQ(told, 0);
    portal.emitColorScheme(scheme(0));
    EXPECT_TRUE(runUntil([&] { return appearance.isDark(); })) << "no preference";
    xSettings.set({});
    EXPECT_FALSE(appearance.isDark());
    EXPECT_EQ(told, 2);
}

TEST_F(AppearanceTest, IsLightWhileThePortalDoesNotAnswerAndTakesALateAnswer) {
    Portal portal(address, Portal::Knows::both, Portal::Answers::never, scheme(1));
    BusConnection bus(queue, address, kAtOnce);
    LinuxAppearance appearance(bus, xSettings);
    ASSERT_TRUE(runUntil([&] { return portal.readOneCalls == 1; }));
    EXPECT_FALSE(appearance.isDark());
    portal.answerAll();
    EXPECT_TRUE(runUntil([&] { return appearance.isDark(); }));
}

TEST_F(AppearanceTest, AsksAPortalThatComesLater) {
    BusConnection bus(queue, address, kAtOnce);
    LinuxAppearance appearance(bus, xSettings);
    GDBusConnection* const watcher = connectTo(address);
    // The only other one on the bus has asked for the portal once it has its match rules.
    const auto countOfRules = [&] {
        GVariant* const stats = g_dbus_connection_call_sync(
            watcher, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Debug.Stats",
            "GetStats", nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        guint32 count = 0;
        if (stats != nullptr) {
            GVariant* const values = g_variant_get_child_value(stats, 0);
            g_variant_lookup(values, "MatchRules", "u", &count);
            g_variant_unref(values);
            g_variant_unref(stats);
        }
        return count;
    };
    ASSERT_TRUE(runUntil([&] { return countOfRules() >= 4; }));
    EXPECT_FALSE(appearance.isDark());
    Portal portal(address, Portal::Knows::readOnly, Portal::Answers::atOnce, scheme(1));
    EXPECT_TRUE(runUntil([&] { return appearance.isDark(); }));
    g_dbus_connection_close_sync(watcher, nullptr, nullptr);
    g_object_unref(watcher);
}

TEST_F(AppearanceTest, GoesAwayAtAnyMoment) {
    Portal portal(address, Portal::Knows::both, Portal::Answers::never, scheme(1));
    {
        BusConnection neverStarted(queue, address, {.firstAttempt = 1h});
        const LinuxAppearance appearance(neverStarted, xSettings);
    }
    for (int turns = 0; turns < 30; ++turns) {
        BusConnection bus(queue, address, kAtOnce);
        const LinuxAppearance appearance(bus, xSettings);
        for (int turn = 0; turn < turns; ++turn)
            g_main_context_iteration(nullptr, FALSE);
    }
    const int before = portal.readOneCalls;
    {
        BusConnection bus(queue, address, kAtOnce);
        const LinuxAppearance appearance(bus, xSettings);
        ASSERT_TRUE(runUntil([&] { return portal.readOneCalls > before; }));
    }
    portal.answerAll();
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

TEST_F(AppearanceTest, IsLightWithoutABus) {
    for (const char* broken : {"", "nonsense", "unix:path=/nowhere/at/all"}) {
        BusConnection bus(queue, broken, kAtOnce);
        const LinuxAppearance appearance(bus, xSettings);
        bool isOver = false;
        const auto end = queue.after(5ms, [&] { isOver = true; });
        EXPECT_TRUE(runUntil([&] { return isOver; }));
        EXPECT_FALSE(appearance.isDark() || appearance.reducesMotion()) << broken;
        xSettings.set({.reducesMotion = true, .isDark = true});
        EXPECT_TRUE(appearance.isDark() && appearance.reducesMotion()) << broken;
        xSettings.set({});
    }
}

TEST_F(AppearanceTest, FindsTheBusOfItsSession) {
    EXPECT_EQ(BusConnection::sessionAddress(), address);
}

}  // namespace
}  // namespace norvane
