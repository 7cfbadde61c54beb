#include <filesystem>

#include "BusTest.h"
#include "linux/TemporaryFolder.h"
#include "platform/linux/LinuxAccessibility.h"
#include "platform/linux/LinuxAppearance.h"
#include "platform/linux/LinuxMonotonicClock.h"
#include "platform/linux/LinuxPowerProfile.h"
#include "platform/linux/LockedScreenLight.h"
#include "platform/linux/NotifierWatch.h"
#include "platform/linux/SessionLock.h"
#include "platform/linux/ThreadLane.h"

namespace norvane {
namespace {

constexpr const char* kFreedesktopLocker = "org.freedesktop.ScreenSaver";
constexpr const char* kProfile = "ActiveProfile";
constexpr const char* kGnomeLocker = "org.gnome.ScreenSaver";

// All that follow a service's yes or no, on one bus that is both the session's and the system's.
struct Followers {
    Followers(MainQueue& queue, const std::string& address)
        : mainQueue(queue), connection(queue, address, kAtOnce) {}

    MainQueue& mainQueue;
    TemporaryFolder machine;
    LinuxMonotonicClock clock;
    AccessibleSurfaces surfaces;
    Published<XSettings> xSettings;
    std::atomic<bool> isLowPower{false};
    BusConnection connection;
    SessionLock lock{connection, connection};
    NotifierWatch watch{connection};
    LinuxAppearance appearance{connection, xSettings};
    LinuxPowerProfile profile{mainQueue, connection, machine.root(), std::make_unique<ThreadLane>("test"),
                              isLowPower};
    LinuxAccessibility accessibility{connection, mainQueue, clock, surfaces, [] { return 1.0; }};

    // There is but one service at a time that can have said so.
    bool isYes() const {
        return lock.isLocked() || watch.state() == NotifierWatch::State::present || isLowPower ||
               accessibility.isOn();
    }
};

// Where each service tells of its property or, without one, speaks as screen lockers do.
const struct Service {
    std::string name;
    const char* path;
    std::string property = "";
    std::string interface = name;
    // By which the path is found.
    const char* lookup = "";
} kServices[] = {
    {kGnomeLocker, "/org/gnome/ScreenSaver"},
    {kFreedesktopLocker, "/org/freedesktop/ScreenSaver"},
    {kFreedesktopLocker, "/ScreenSaver"},
    {"org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver"},
    {"org.mate.ScreenSaver", "/org/mate/ScreenSaver"},
    {"org.xfce.ScreenSaver", "/org/xfce/ScreenSaver"},
    {"org.freedesktop.login1", "/c2", "LockedHint", "org.freedesktop.login1.Session", "GetSession"},
    {"org.freedesktop.login1", "/c2", "LockedHint", "org.freedesktop.login1.Session", "GetSessionByPID"},
    {"net.hadess.PowerProfiles", "/net/hadess/PowerProfiles", kProfile},
    {"org.freedesktop.UPower.PowerProfiles", "/org/freedesktop/UPower/PowerProfiles", kProfile},
    {"org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher", "IsStatusNotifierHostRegistered"},
    {"org.a11y.Bus", "/org/a11y/bus", "IsEnabled", "org.a11y.Status"},
};

class FollowedServicesTest : public BusTest {
 protected:
    FollowedServicesTest() { begin(); }
    void begin() { followers = std::make_unique<Followers>(queue, bus.address()); }

    void play(const Service& which, const std::string& firstWord) {
        service.reset();
        played = &which;
        word = firstWord;
        service = std::make_unique<PlayedService>(bus, which.name.c_str(),
                                                  [this](const auto& call) { return answer(call); });
    }
    PlayedService::Answer answer(const PlayedService::Call& call) const {
        const std::string& property = played->property;
        if (call.method == "GetAddress") return {"('no bus',)"};
        if (call.method == played->lookup) return {std::string("(objectpath '") + played->path + "',)"};
        const bool isGet = call.arguments == "('" + played->interface + "', '" + property + "')";
        const bool isKnown = property.empty() ? call.method == "GetActive" : isGet;
        if (!isKnown || call.path != played->path) return {.error = "org.example.No"};
        return {property.empty() ? '(' + word + ",)" : "(<" + word + ">,)"};
    }
    void say(const std::string& text) {
        word = text;
        if (played->property.empty())
            return service->emit(played->path, played->name.c_str(), "ActiveChanged", '(' + word + ",)");
        service->emitChange(played->path, played->interface, "{'" + played->property + "': <" + word + ">}");
    }
    bool comesTo(bool isYes) {
        return runUntil([&] { return followers->isYes() == isYes; });
    }

    std::unique_ptr<Followers> followers;
    const Service* played = nullptr;
    std::string word;
    std::unique_ptr<PlayedService> service;
};

TEST_F(FollowedServicesTest, AreBelievedWhileTheyAreThereAndSpeakClearly) {
    ASSERT_TRUE(comesToBe(followers->connection, BusConnection::State::connected));
    for (const Service& each : kServices) {
        SCOPED_TRACE(each.name + ' ' + each.path + ' ' + each.lookup);
        const std::string& property = each.property;
        const std::string yes = property == kProfile ? "'power-saver'" : "true";
        const std::string no = property == kProfile ? "'balanced'" : "false";
        for (const char* const unclear : {"'yes'", "[true]"}) {
            play(each, unclear);
            EXPECT_TRUE(runUntil([&] { return !service->calls().empty(); }));
            service->emit(each.path, "org.example", "Nothing", "()");  // heard after the answer
            EXPECT_TRUE(hearsAll(followers->connection));
            EXPECT_FALSE(followers->isYes()) << unclear;
        }
        play(each, yes);
        EXPECT_TRUE(comesTo(true)) << "asked when it comes";
        for (const char* const unclear : {no.c_str(), "'yes'", "1", "[true]"}) {
            say(yes);
            EXPECT_TRUE(comesTo(true)) << unclear;
            say(unclear);
            if (property.empty()) say(no);  // a locker's signal of another type is none
            EXPECT_TRUE(comesTo(false)) << unclear;
        }
        say(yes);
        for (const char* const odd : {"()", "('x',)", "(1,)", "(false, false)"})
            service->emit(each.path, each.name.c_str(), "ActiveChanged", odd);
        for (const char* const odd : {",)", ", 1, 2)", ", {'x': <1>})", ", ['x'])", ", {'x': <1>}, ['x'])"})
            service->emit(each.path, kPropertiesInterface, "PropertiesChanged",
                          "('" + each.interface + '\'' + odd);
        EXPECT_TRUE(hearsAll(followers->connection));
        EXPECT_TRUE(comesTo(true)) << "nothing was said";
        if (!property.empty()) {
            word = no;
            service->emitChange(each.path, each.interface, "@a{sv} {}", "['Another', '" + property + "']");
            EXPECT_TRUE(comesTo(false)) << "asked for anew";
            say(yes);
            EXPECT_TRUE(comesTo(true));
        }
        service.reset();
        EXPECT_TRUE(comesTo(false)) << "gone";
        play(each, yes);
        EXPECT_TRUE(comesTo(true)) << "and comes again";
        bus.kill();
        EXPECT_TRUE(comesTo(false)) << "gone with its bus";
        bus.start();
        play(each, yes);
        EXPECT_TRUE(comesTo(true)) << "there before the connection";
        service.reset();
        EXPECT_TRUE(comesTo(false));
    }
}

// A power manager may stop another one, and a locker lock the screen.
TEST_F(FollowedServicesTest, AreNotStartedToBeFollowed) {
    const std::string mark = bus.folder() + "/started";
    for (const Service& each : kServices)
        bus.makeActivatable(each.name, "/usr/bin/touch " + mark);
    bus.makeActivatable("org.norvane.Last", "/bin/false");
    begin();
    EXPECT_TRUE(hearsAll(followers->connection));
    BusPeer(bus.address()).askBus("StartServiceByName", g_variant_new("(su)", "org.norvane.Last", 0));
    EXPECT_FALSE(std::filesystem::exists(mark));
}

TEST_F(FollowedServicesTest, AreLeftAtAnyMoment) {
    const auto never = [](const auto&) { return PlayedService::Answer{.isLater = true}; };
    std::vector<std::unique_ptr<PlayedService>> silent;
    silent.push_back(std::make_unique<PlayedService>(bus, kPortalName, never));
    for (const Service& each : kServices)
        silent.push_back(std::make_unique<PlayedService>(bus, each.name.c_str(), never));
    for (int turns = 0; turns < 60; ++turns) {
        begin();
        turn(turns);
    }
    ASSERT_TRUE(hearsAll(followers->connection));
    followers.reset();
    silent.clear();
    turnToTheEnd();
}

// A screen that counts who waits for it.
struct SwitchedLight final : ScreenLight {
    bool isLit() override { return isOn; }
    bool isKnownDark() override { return !isOn; }
    Cancellation onLit(std::function<void()> observer) override { return lit.add(std::move(observer)); }

    bool isOn = false;
    Observers<> lit;
};

TEST_F(FollowedServicesTest, LockTheScreenTogetherAndTheLastOneLightsItUnlessItIsDarkItself) {
    SwitchedLight screen;
    LockedScreenLight light(followers->lock, screen);
    int told = 0;
    const auto changes = followers->lock.onDidChange([&] { ++told; });
    ASSERT_TRUE(comesToBe(followers->connection, BusConnection::State::connected));
    const PlayedService other(bus, kFreedesktopLocker,
                              [](const auto&) -> PlayedService::Answer { return {}; });
    const auto setOther = [&](const char* isActive) {
        other.emit("/ScreenSaver", kFreedesktopLocker, "ActiveChanged", isActive);
    };
    setOther("(true,)");
    play(kServices[0], "true");
    for (const char* const state : {"false", "true", "false"})
        say(state);
    EXPECT_TRUE(comesTo(true));
    EXPECT_TRUE(hearsAll(followers->connection));
    EXPECT_TRUE(followers->lock.isLocked()) << "by the other one";
    int count = 0;
    auto waiting = light.onLit([&] { ++count; });
    EXPECT_EQ(screen.lit.count(), 0u) << "no use while it is locked";
    setOther("(false,)");
    EXPECT_TRUE(comesTo(false));
    EXPECT_EQ(told, 2);
    EXPECT_EQ(count, 0) << "it is dark itself";
    screen.isOn = true;
    screen.lit.tell();
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(light.isLit());
    for (const int lit : {2, 2}) {
        say("true");
        EXPECT_TRUE(comesTo(true));
        EXPECT_FALSE(light.isLit());
        EXPECT_EQ(screen.lit.count(), 0u);
        say("false");
        EXPECT_TRUE(comesTo(false));
        EXPECT_EQ(count, lit);
        waiting.cancel();
    }
}

}  // namespace
}  // namespace norvane
