#include "platform/linux/SessionLock.h"

#include <filesystem>
#include <utility>

#include "BusTest.h"
#include "platform/linux/LockedScreenLight.h"
#include "PlayedService.h"

namespace norvane {
namespace {

constexpr const char* kSession = "org.freedesktop.login1.Session";
constexpr const char* kOwnPath = "/org/freedesktop/login1/session/c2";

// A screen locker on the bus, which answers what it is told, in the text form of GVariant; "" for an error.
class Locker {
 public:
    Locker(const PrivateBus& bus, const char* name, const char* path, const std::string& answer = "(true,)")
        : name_(name), path_(path), service_(bus, name, [this, answer](const PlayedService::Call& call) {
              const bool isAnswered = call.path == path_ && call.method == "GetActive" && !answer.empty();
              return PlayedService::Answer{.values = answer, .error = isAnswered ? "" : "org.example.No"};
          }) {}

    void emit(const char* values) const { service_.emit(path_, name_, "ActiveChanged", values); }
    int questions() const { return service_.count("GetActive"); }

 private:
    const char* const name_;
    const char* const path_;
    PlayedService service_;
};

class SessionLockTest : public BusTest {
 protected:
    SessionLockTest() { begin(); }

    void begin() {
        lock.reset();
        session = std::make_unique<BusConnection>(queue, bus.address(), kAtOnce);
        system = std::make_unique<BusConnection>(queue, systemBus.address(), kAtOnce);
        lock = std::make_unique<SessionLock>(*session, *system);
        told = 0;
        changes = lock->onDidChange([this] { ++told; });
        // Whoever comes now is not there yet for the first question.
        EXPECT_TRUE(BusTest::comesToBe(*session, BusConnection::State::connected));
        EXPECT_TRUE(hearsAll(*session) && hearsAll(*system));
    }
    bool comesToBe(bool locked) {
        return runUntil([&] { return lock->isLocked() == locked; });
    }

    PrivateBus systemBus;
    std::unique_ptr<BusConnection> session;
    std::unique_ptr<BusConnection> system;
    std::unique_ptr<SessionLock> lock;
    int told = 0;
    Cancellation changes;
};

TEST_F(SessionLockTest, FollowsEachLockerAsItComesAndGoes) {
    for (const auto& [name, path] : {std::pair{"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver"},
                                     {"org.freedesktop.ScreenSaver", "/ScreenSaver"},
                                     {"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver"},
                                     {"org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver"},
                                     {"org.mate.ScreenSaver", "/org/mate/ScreenSaver"},
                                     {"org.xfce.ScreenSaver", "/org/xfce/ScreenSaver"}}) {
        told = 0;
        {
            const Locker locker(bus, name, path);
            EXPECT_TRUE(comesToBe(true)) << path << ", asked";
            locker.emit("(false,)");
            EXPECT_TRUE(comesToBe(false)) << path;
            locker.emit("(true,)");
            EXPECT_TRUE(comesToBe(true)) << path;
        }
        EXPECT_TRUE(comesToBe(false)) << path << " died while it was in front";
        EXPECT_EQ(told, 4) << path;
    }
    const Locker locker(bus, "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver");
    EXPECT_TRUE(comesToBe(true));
    bus.kill();
    EXPECT_TRUE(comesToBe(false));
    bus.start();
    const Locker next(bus, "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver");
    EXPECT_TRUE(comesToBe(true));
}

TEST_F(SessionLockTest, OneLockerIsEnoughAndNobodyIsStarted) {
    const std::string mark = bus.folder() + "/started";
    bus.makeActivatable("org.gnome.ScreenSaver", "/usr/bin/touch " + mark);
    begin();
    const Locker one(bus, "org.freedesktop.ScreenSaver", "/ScreenSaver");
    const Locker other(bus, "org.mate.ScreenSaver", "/org/mate/ScreenSaver");
    EXPECT_TRUE(runUntil([&] { return one.questions() == 2 && other.questions() == 1; }));
    other.emit("(true,)");
    EXPECT_TRUE(comesToBe(true));
    for (const char* const state : {"(false,)", "(true,)", "(false,)"})
        one.emit(state);
    other.emit("(false,)");
    EXPECT_TRUE(comesToBe(false));
    EXPECT_EQ(told, 2) << "when the last one let go";
    EXPECT_FALSE(std::filesystem::exists(mark));
}

TEST_F(SessionLockTest, GarbageLocksNothing) {
    for (const char* const answer :
         {"('yes',)", "(1,)", "(<true>,)", "([true],)", "(true, true)", "()", ""}) {
        SCOPED_TRACE(answer);
        const Locker locker(bus, "org.xfce.ScreenSaver", "/org/xfce/ScreenSaver", answer);
        ASSERT_TRUE(runUntil([&] { return locker.questions() == 1; }));
        for (const char* const values :
             {"()", "('yes',)", "(<true>,)", "(true, true)", "(false,)", "(true,)"})
            locker.emit(values);
        EXPECT_TRUE(comesToBe(true));
        locker.emit("(false,)");
        EXPECT_TRUE(comesToBe(false));
        EXPECT_EQ(std::exchange(told, 0), 2) << "of what was a boolean";
    }
}

TEST_F(SessionLockTest, FollowsTheHintOfItsSession) {
    for (const char* const known : {"GetSession", "GetSessionByPID"}) {
        SCOPED_TRACE(known);
        std::string hint = "true";
        auto manager = std::make_unique<PlayedService>(
            systemBus, "org.freedesktop.login1",
            [&](const PlayedService::Call& call) -> PlayedService::Answer {
                if (call.method == known) return {std::string("(objectpath '") + kOwnPath + "',)"};
                if (call.method != "Get") return {.error = "org.example.No"};
                EXPECT_EQ(call.path + call.arguments,
                          std::string(kOwnPath) + "('" + kSession + "', 'LockedHint')");
                return {"(<" + hint + ">,)"};
            });
        const auto say = [&](const char* value) {
            hint = value;
            manager->emitChange(kOwnPath, kSession, std::string("{'LockedHint': <") + value + ">}");
        };
        begin();
        EXPECT_TRUE(comesToBe(true)) << "asked";
        for (const char* const unlocked : {"false", "'yes'", "1"}) {
            say(unlocked);
            EXPECT_TRUE(comesToBe(false)) << unlocked;
            say("true");
            EXPECT_TRUE(comesToBe(true)) << unlocked;
        }
        hint = "false";
        manager->emitChange(kOwnPath, kSession, "@a{sv} {}", "['LockedHint']");
        EXPECT_TRUE(comesToBe(false)) << "asked for anew";
        say("true");
        EXPECT_TRUE(comesToBe(true));
        manager.reset();
        EXPECT_TRUE(comesToBe(false)) << "gone";
    }
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
    const Locker locker(bus, "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "(false,)");
    const auto setLocked = [&](bool isLocked) {
        locker.emit(isLocked ? "(true,)" : "(false,)");
        ASSERT_TRUE(comesToBe(isLocked));
    };
    EXPECT_TRUE(light.isLit());
    setLocked(true);
    EXPECT_FALSE(light.isLit());
    int count = 0;
    auto waiting = light.onLit([&] { ++count; });
    EXPECT_EQ(screen.lit.count(), 0u) << "no use while it is locked";
    screen.lit.tell();
    EXPECT_EQ(count, 0);

    screen.isOn = false;
    setLocked(false);
    EXPECT_EQ(count, 0) << "it is dark itself";
    EXPECT_FALSE(light.isLit());
    ASSERT_EQ(screen.lit.count(), 1u);
    screen.isOn = true;
    screen.lit.tell();
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(light.isLit());

    setLocked(true);
    EXPECT_EQ(screen.lit.count(), 0u);
    setLocked(false);
    EXPECT_EQ(count, 2);
    waiting.cancel();
    EXPECT_EQ(screen.lit.count(), 0u);
    setLocked(true);
    setLocked(false);
    EXPECT_EQ(count, 2);
}

}  // namespace
}  // namespace norvane
