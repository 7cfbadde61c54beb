#include <gtest/gtest.h>

#include <gio/gio.h>
#include <limits>
#include <memory>
#include <string>

#include "linux/RunLoop.h"
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
        : knows_(knows), answers_(answers), value_(g_variant_ref_sink(colorScheme)) {
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
        g_variant_unref(value_);
        if (accent_ != nullptr) g_variant_unref(accent_);
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
    void setAccentColor(GVariant* value) { accent_ = g_variant_ref_sink(value); }
    void answerAll() {
        for (GDBusMethodInvocation* const each : unanswered_)
            answer(each);
        unanswered_.clear();
    }

    int readOneCalls = 0;
    int readCalls = 0;
    int accentCalls = 0;

 private:
    void callBus(const char* method, GVariant* parameters) {
        GVariant* const result = g_dbus_connection_call_sync(
            connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
            parameters, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        g_variant_unref(result);
    }

    static void called(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* method,
                       GVariant* parameters, GDBusMethodInvocation* invocation, gpointer portal) {
        auto& self = *static_cast<Portal*>(portal);
        const gchar* group = nullptr;
        g_variant_get_child(parameters, 0, "&s", &group);
        EXPECT_STREQ(group, "org.freedesktop.appearance");
        const bool isReadOne = std::string_view(method) == "ReadOne";
        ++(!isScheme(parameters) ? self.accentCalls : isReadOne ? self.readOneCalls : self.readCalls);
        if (self.answers_ == Answers::never) {
            self.unanswered_.push_back(invocation);
        } else if (isReadOne ? self.knows_ == Knows::readOnly : self.knows_ == Knows::readOneOnly) {
            g_dbus_method_invocation_return_error_literal(invocation, G_DBUS_ERROR,
                                                          G_DBUS_ERROR_UNKNOWN_METHOD, "no such method");
        } else {
            self.answer(invocation);
        }
    }

    static bool isScheme(GVariant* parameters) {
        const gchar* key = nullptr;
        g_variant_get_child(parameters, 1, "&s", &key);
        const bool isScheme = std::string_view(key) == "color-scheme";
        EXPECT_TRUE(isScheme || std::string_view(key) == "accent-color") << key;
        return isScheme;
    }

    void answer(GDBusMethodInvocation* invocation) {
        const std::string_view method = g_dbus_method_invocation_get_method_name(invocation);
        GVariant* const set =
            isScheme(g_dbus_method_invocation_get_parameters(invocation)) ? value_ : accent_;
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
    GVariant* const value_;
    GVariant* accent_ = nullptr;  // the portal knows no such setting
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
        LinuxAppearance appearance(bus);
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
    LinuxAppearance appearance(bus);
    int told = 0;
    const auto subscription = appearance.onDidChange([&] { ++told; });
    ASSERT_TRUE(runUntil([&] { return portal.readOneCalls == 1; }));
    portal.emitColorScheme(scheme(1));
    EXPECT_TRUE(runUntil([&] { return appearance.isDark(); }));
    portal.emitColorScheme(scheme(1));
    portal.emit("org.freedesktop.appearance", "accent-color", scheme(0));
    portal.emit("org.gnome.desktop.interface", "color-scheme", scheme(0));
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
    LinuxAppearance appearance(bus);
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
    LinuxAppearance appearance(bus);
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

TEST_F(AppearanceTest, IsLightWhileThePortalDoesNotAnswerAndTakesALateAnswer) {
    Portal portal(address, Portal::Knows::both, Portal::Answers::never, scheme(1));
    BusConnection bus(queue, address, kAtOnce);
    LinuxAppearance appearance(bus);
    ASSERT_TRUE(runUntil([&] { return portal.readOneCalls == 1; }));
    EXPECT_FALSE(appearance.isDark());
    portal.answerAll();
    EXPECT_TRUE(runUntil([&] { return appearance.isDark(); }));
}

TEST_F(AppearanceTest, AsksAPortalThatComesLater) {
    BusConnection bus(queue, address, kAtOnce);
    LinuxAppearance appearance(bus);
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
    ASSERT_TRUE(runUntil([&] { return countOfRules() >= 2; }));
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
        const LinuxAppearance appearance(neverStarted);
    }
    for (int turns = 0; turns < 30; ++turns) {
        BusConnection bus(queue, address, kAtOnce);
        const LinuxAppearance appearance(bus);
        for (int turn = 0; turn < turns; ++turn)
            g_main_context_iteration(nullptr, FALSE);
    }
    const int before = portal.readOneCalls;
    {
        BusConnection bus(queue, address, kAtOnce);
        const LinuxAppearance appearance(bus);
        ASSERT_TRUE(runUntil([&] { return portal.readOneCalls > before; }));
    }
    portal.answerAll();
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
}

TEST_F(AppearanceTest, IsLightWithoutABus) {
    for (const char* broken : {"", "nonsense", "unix:path=/nowhere/at/all"}) {
        BusConnection bus(queue, broken, kAtOnce);
        const LinuxAppearance appearance(bus);
        bool isOver = false;
        const auto end = queue.after(5ms, [&] { isOver = true; });
        EXPECT_TRUE(runUntil([&] { return isOver; }));
        EXPECT_FALSE(appearance.isDark()) << broken;
    }
}

TEST_F(AppearanceTest, FindsTheBusOfItsSession) {
    EXPECT_EQ(BusConnection::sessionAddress(), address);
}

}  // namespace
}  // namespace norvane
