#include "platform/linux/SessionLock.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "BusPeer.h"
#include "linux/RunLoop.h"
#include "MockService.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/LockedScreenLight.h"
#include "PrivateBus.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr BusConnection::Pace kAtOnce{.firstAttempt = 0ns, .firstPause = 5ms, .longestPause = 20ms};
constexpr MockService::Place kManager{"org.freedesktop.login1", "/org/freedesktop/login1",
                                      "org.freedesktop.login1.Manager"};
constexpr const char* kSession = "org.freedesktop.login1.Session";
constexpr const char* kOwnPath = "/org/freedesktop/login1/session/c2";
constexpr const char* kMock = "org.freedesktop.DBus.Mock";

// A screen locker on the bus, which answers what it is told, in the text form of GVariant; null for an error.
class Locker {
 public:
    Locker(const PrivateBus& bus, const char* name, const char* path, const char* answer)
        : peer_(bus.address()), name_(name), path_(path), answer_(answer) {
        const std::string xml = std::string("<node><interface name='") + name +
                                "'><method name='GetActive'><arg type='v' direction='out'/></method>"
                                "</interface></node>";
        static const GDBusInterfaceVTable calls{&Locker::called, nullptr, nullptr, {}};
        GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(xml.c_str(), nullptr);
        // GLib answers by the description's types, so what is to be garbage is sent without its help.
        object_ = g_dbus_connection_register_object(peer_.connection(), path, node->interfaces[0], &calls,
                                                    this, nullptr, nullptr);
        g_dbus_node_info_unref(node);
        peer_.requestName(name);
    }
    // Calls may be on their way to it.
    ~Locker() { g_dbus_connection_unregister_object(peer_.connection(), object_); }
    Locker(const Locker&) = delete;
    Locker& operator=(const Locker&) = delete;

    void emit(const char* arguments) const {
        g_dbus_connection_emit_signal(peer_.connection(), nullptr, path_, name_, "ActiveChanged",
                                      g_variant_new_parsed(arguments), nullptr);
        // The bus has it then, and hands it over before whatever anybody sends from now on.
        EXPECT_TRUE(peer_.hasOwner(name_));
    }

    int questions = 0;

 private:
    static void called(GDBusConnection* connection, const gchar*, const gchar*, const gchar*, const gchar*,
                       GVariant*, GDBusMethodInvocation* invocation, gpointer locker) {
        auto& self = *static_cast<Locker*>(locker);
        ++self.questions;
        GDBusMessage* const call = g_dbus_method_invocation_get_message(invocation);
        GDBusMessage* const reply =
            self.answer_ != nullptr
                ? g_dbus_message_new_method_reply(call)
                : g_dbus_message_new_method_error_literal(call, "org.freedesktop.DBus.Error.Failed", "no");
        if (self.answer_ != nullptr) g_dbus_message_set_body(reply, g_variant_new_parsed(self.answer_));
        g_dbus_connection_send_message(connection, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
        g_object_unref(reply);
        g_object_unref(invocation);
    }

    guint object_ = 0;
    BusPeer peer_;
    const char* const name_;
    const char* const path_;
    const char* const answer_;
};

class SessionLockTest : public testing::Test {
 protected:
    SessionLockTest() { begin(); }

    void begin() {
        lock.reset();
        session = std::make_unique<BusConnection>(queue, sessionBus.address(), kAtOnce);
        system = std::make_unique<BusConnection>(queue, systemBus.address(), kAtOnce);
        lock = std::make_unique<SessionLock>(*session, *system);
        told = 0;
        changes = lock->onDidChange([this] { ++told; });
        // Whoever comes now is not there yet for the first question.
        int answers = 0;
        const auto count = [&](GVariant*, const GError*) { ++answers; };
        const BusConnection::Call getId{.name = "org.freedesktop.DBus",
                                        .path = "/org/freedesktop/DBus",
                                        .interface = "org.freedesktop.DBus",
                                        .method = "GetId"};
        EXPECT_TRUE(runUntil([&] { return session->state() == BusConnection::State::connected; }));
        const auto one = session->call(getId, count);
        const auto other = system->call(getId, count);
        EXPECT_TRUE(runUntil([&] { return answers == 2; }));
    }
    bool comesToBe(bool locked) {
        return runUntil([&] { return lock->isLocked() == locked; });
    }

    PrivateBus sessionBus;
    PrivateBus systemBus;
    LinuxMainQueue queue;
    std::unique_ptr<BusConnection> session;
    std::unique_ptr<BusConnection> system;
    std::unique_ptr<SessionLock> lock;
    int told = 0;
    Cancellation changes;
};

TEST_F(SessionLockTest, FollowsEachLockerAsItComesAndGoes) {
    struct Case {
        const char* name;
        const char* path;
    };
    for (const Case& c : {Case{"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver"},
                          Case{"org.freedesktop.ScreenSaver", "/ScreenSaver"},
                          Case{"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver"},
                          Case{"org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver"},
                          Case{"org.mate.ScreenSaver", "/org/mate/ScreenSaver"},
                          Case{"org.xfce.ScreenSaver", "/org/xfce/ScreenSaver"}}) {
        told = 0;
        {
            const Locker locker(sessionBus, c.name, c.path, "(true,)");
            EXPECT_TRUE(comesToBe(true)) << c.path << ", asked";
            EXPECT_EQ(locker.questions, 1) << c.path;
            locker.emit("(false,)");
            EXPECT_TRUE(comesToBe(false)) << c.path;
            locker.emit("(true,)");
            EXPECT_TRUE(comesToBe(true)) << c.path;
        }
        EXPECT_TRUE(comesToBe(false)) << c.path << " died while it was in front";
        EXPECT_EQ(told, 4) << c.path;
    }
}

TEST_F(SessionLockTest, OneLockerIsEnoughAndNobodyIsStarted) {
    const std::string mark = sessionBus.folder() + "/started";
    sessionBus.makeActivatable("org.gnome.ScreenSaver", "/usr/bin/touch " + mark);
    begin();
    const Locker one(sessionBus, "org.freedesktop.ScreenSaver", "/ScreenSaver", "(true,)");
    const Locker other(sessionBus, "org.mate.ScreenSaver", "/org/mate/ScreenSaver", "(true,)");
    EXPECT_TRUE(runUntil([&] { return one.questions == 1 && other.questions == 1; }));
    other.emit("(true,)");
    EXPECT_TRUE(comesToBe(true));
    one.emit("(false,)");
    one.emit("(true,)");
    one.emit("(false,)");
    other.emit("(false,)");
    EXPECT_TRUE(comesToBe(false));
    EXPECT_EQ(told, 2) << "when the last one let go";
    EXPECT_FALSE(std::filesystem::exists(mark));
}

TEST_F(SessionLockTest, GarbageLocksNothing) {
    const char* const error = nullptr;
    for (const char* const answer :
         {"('yes',)", "(1,)", "(<true>,)", "([true],)", "(true, true)", "()", error}) {
        SCOPED_TRACE(answer != nullptr ? answer : "error");
        const Locker locker(sessionBus, "org.xfce.ScreenSaver", "/org/xfce/ScreenSaver", answer);
        ASSERT_TRUE(runUntil([&] { return locker.questions == 1; }));
        for (const char* const arguments : {"()", "('yes',)", "(<true>,)", "(true, true)"})
            locker.emit(arguments);
        locker.emit("(false,)");
        locker.emit("(true,)");
        EXPECT_TRUE(comesToBe(true));
        locker.emit("(false,)");
        EXPECT_TRUE(comesToBe(false));
        EXPECT_EQ(std::exchange(told, 0), 2) << "of what was a boolean";
    }
}

TEST_F(SessionLockTest, FollowsTheHintOfItsSession) {
    constexpr const char* kOwn = "ret = '/org/freedesktop/login1/session/c2'";
    constexpr const char* kNone = "raise dbus.exceptions.DBusException('no', name='org.example.No')";
    struct Case {
        const char* name;
        const char* byName;
        const char* byProcess;
    };
    for (const Case& c : {Case{"by name", kOwn, kNone}, Case{"by process", kNone, kOwn}}) {
        auto manager = std::make_unique<MockService>(systemBus, kManager, "logind");
        manager->addMethod("GetSession", "s", "o", c.byName);
        manager->addMethod("GetSessionByPID", "u", "o", c.byProcess);
        BusPeer peer(systemBus.address());
        EXPECT_TRUE(peer.call(kManager.name, kManager.path, kMock, "AddSession",
                              g_variant_new("(ssusb)", "c2", "seat0", 1000, "user", TRUE)));
        const auto say = [&](const std::string& value) {
            const std::string properties = "{'LockedHint': <" + value + ">}";
            EXPECT_TRUE(
                peer.call(kManager.name, kOwnPath, kMock, "UpdateProperties",
                          g_variant_new("(s@a{sv})", kSession, g_variant_new_parsed(properties.c_str()))));
        };
        say("true");
        begin();
        EXPECT_TRUE(comesToBe(true)) << c.name << ", asked";
        for (const char* const unlocked : {"false", "'yes'", "1"}) {
            say(unlocked);
            EXPECT_TRUE(comesToBe(false)) << c.name << ' ' << unlocked;
            say("true");
            EXPECT_TRUE(comesToBe(true)) << c.name << ' ' << unlocked;
        }
        say("false");
        EXPECT_TRUE(comesToBe(false)) << c.name;
        const auto emit = [&](const char* arguments) {
            EXPECT_TRUE(
                peer.call(kManager.name, kOwnPath, kMock, "EmitSignal",
                          g_variant_new("(sss@av)", "org.freedesktop.DBus.Properties", "PropertiesChanged",
                                        "sa{sv}as", g_variant_new_parsed(arguments))));
        };
        emit("[<'org.freedesktop.login1.Session'>, <{'LockedHint': <true>}>, <@as []>]");
        EXPECT_TRUE(comesToBe(true)) << c.name;
        emit("[<'org.freedesktop.login1.Session'>, <@a{sv} {}>, <['LockedHint']>]");
        EXPECT_TRUE(comesToBe(false)) << c.name << ", which the property itself still says";
        say("true");
        EXPECT_TRUE(comesToBe(true)) << c.name;
        manager.reset();
        EXPECT_TRUE(comesToBe(false)) << c.name << ", gone";
    }
}

TEST_F(SessionLockTest, OutlivesItsBus) {
    auto locker =
        std::make_unique<Locker>(sessionBus, "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "(true,)");
    EXPECT_TRUE(comesToBe(true));
    sessionBus.kill();
    EXPECT_TRUE(comesToBe(false));
    locker.reset();
    sessionBus.start();
    locker =
        std::make_unique<Locker>(sessionBus, "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "(true,)");
    EXPECT_TRUE(comesToBe(true));
}

// A screen that counts who waits for it.
class SwitchedLight final : public ScreenLight {
 public:
    bool isLit() override { return isOn; }
    bool isKnownDark() override { return !isOn; }
    Cancellation onLit(std::function<void()> observer) override { return lit.add(std::move(observer)); }

    bool isOn = true;
    Observers<> lit;
};

TEST_F(SessionLockTest, TheScreenIsLitWhenNeitherTheLockNorItselfKeepsItDark) {
    SwitchedLight screen;
    LockedScreenLight light(*lock, screen);
    const Locker locker(sessionBus, "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "(false,)");
    EXPECT_TRUE(light.isLit());
    locker.emit("(true,)");
    ASSERT_TRUE(comesToBe(true));
    EXPECT_FALSE(light.isLit());
    int count = 0;
    auto waiting = light.onLit([&] { ++count; });
    EXPECT_EQ(screen.lit.count(), 0u) << "no use while it is locked";
    screen.lit.tell();
    EXPECT_EQ(count, 0);

    screen.isOn = false;
    locker.emit("(false,)");
    ASSERT_TRUE(comesToBe(false));
    EXPECT_EQ(count, 0) << "it is dark itself";
    EXPECT_FALSE(light.isLit());
    ASSERT_EQ(screen.lit.count(), 1u);
    screen.isOn = true;
    screen.lit.tell();
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(light.isLit());

    locker.emit("(true,)");
    ASSERT_TRUE(comesToBe(true));
    EXPECT_EQ(screen.lit.count(), 0u);
    locker.emit("(false,)");
    ASSERT_TRUE(comesToBe(false));
    EXPECT_EQ(count, 2);
    waiting.cancel();
    EXPECT_EQ(screen.lit.count(), 0u);
    locker.emit("(true,)");
    ASSERT_TRUE(comesToBe(true));
    locker.emit("(false,)");
    ASSERT_TRUE(comesToBe(false));
    EXPECT_EQ(count, 2);
}

}  // namespace
}  // namespace norvane
