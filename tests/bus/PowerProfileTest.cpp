#include "platform/linux/LinuxPowerProfile.h"

#include <filesystem>
#include <utility>

#include "BusTest.h"
#include "linux/TemporaryFolder.h"
#include "platform/linux/ThreadLane.h"
#include "PlayedService.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kFirmwareFile = "/sys/firmware/acpi/platform_profile";

struct Place {
    const char* name;
    const char* path;
};
constexpr Place kOldName{"net.hadess.PowerProfiles", "/net/hadess/PowerProfiles"};
constexpr Place kNewName{"org.freedesktop.UPower.PowerProfiles", "/org/freedesktop/UPower/PowerProfiles"};

// The service that keeps the profile, in the text form of GVariant; "" where it does not know it.
class Service {
 public:
    Service(const PrivateBus& bus, const Place& place, std::string profile = "'power-saver'")
        : place_(place),
          profile_(std::move(profile)),
          service_(bus, place.name, [this](const auto& call) -> PlayedService::Answer {
              EXPECT_EQ(call.arguments, std::string("('") + place_.name + "', 'ActiveProfile')");
              if (profile_.empty()) return {.error = "org.freedesktop.DBus.Error.UnknownProperty"};
              return {"(<" + profile_ + ">,)"};
          }) {}

    void turnTo(const std::string& profile) {
        profile_ = profile;
        say("{'ActiveProfile': <" + profile + ">}");
    }
    bool isAsked(int times) const { return service_.count("Get") == times; }
    // Whatever it knows.
    void say(const std::string& values, const std::string& outdated = "@as []") const {
        service_.emitChange(place_.path, place_.name, values, outdated);
    }
    void sayAnything(const std::string& arguments) const {
        service_.emit(place_.path, "org.freedesktop.DBus.Properties", "PropertiesChanged", arguments);
    }

 private:
    const Place place_;
    std::string profile_;
    PlayedService service_;
};

// A lane that keeps what it is given.
class HeldLane final : public Lane {
 public:
    explicit HeldLane(std::vector<Task>& tasks) : tasks_(tasks) {}
    bool post(Task task) override {
        tasks_.push_back(std::move(task));
        return true;
    }

 private:
    std::vector<Task>& tasks_;
};

class PowerProfileTest : public BusTest {
 protected:
    void SetUp() override { begin(bus.address()); }
    void TearDown() override { profile.reset(); }

    void begin(const std::string& address) {
        profile.reset();
        connection = std::make_unique<BusConnection>(queue, address, kAtOnce);
        beginWith(std::make_unique<ThreadLane>("test"));
    }
    void beginWith(std::unique_ptr<Lane> lane) {
        profile = std::make_unique<LinuxPowerProfile>(queue, *connection, machine.root(), std::move(lane),
                                                      isLow, 2ms);
    }
    bool comesToBe(bool low) {
        return runUntil([&] { return isLow.load() == low; });
    }

    TemporaryFolder machine;
    std::atomic<bool> isLow{false};
    std::unique_ptr<BusConnection> connection;
    std::unique_ptr<LinuxPowerProfile> profile;
};

TEST_F(PowerProfileTest, FollowsTheServiceAsItComesAndGoesAndWithItsBus) {
    ASSERT_TRUE(BusTest::comesToBe(*connection, BusConnection::State::connected));
    for (const int round : {1, 2}) {
        Service service(bus, kOldName);
        EXPECT_TRUE(comesToBe(true)) << round;
        service.turnTo("'balanced'");
        EXPECT_TRUE(comesToBe(false)) << round;
        service.turnTo("'power-saver'");
        EXPECT_TRUE(comesToBe(true)) << round;
    }
    EXPECT_TRUE(comesToBe(false)) << "gone";
    {
        const Service service(bus, kOldName);
        begin(bus.address());
        EXPECT_TRUE(comesToBe(true)) << "one that was there before";
        bus.kill();
        EXPECT_TRUE(comesToBe(false));
    }
    bus.start();
    const Service service(bus, kOldName);
    EXPECT_TRUE(comesToBe(true));
}

TEST_F(PowerProfileTest, MovesFromTheOldNameToTheNewOneAndBack) {
    Service old(bus, kOldName);
    EXPECT_TRUE(comesToBe(true));
    {
        Service modern(bus, kNewName, "'performance'");
        EXPECT_TRUE(comesToBe(false)) << "the new name comes first";
        modern.turnTo("'power-saver'");
        EXPECT_TRUE(comesToBe(true));
        old.turnTo("'balanced'");
        modern.turnTo("'balanced'");
        EXPECT_TRUE(comesToBe(false));
        old.turnTo("'power-saver'");
    }
    EXPECT_TRUE(comesToBe(true)) << "the old one is left";
}

TEST_F(PowerProfileTest, TakesNoGarbageForAProfileNorAsksTheFirmwareForIt) {
    machine.write(kFirmwareFile, "low-power\n");
    Service service(bus, kNewName);
    for (const char* const garbage : {"1", "true", "['power-saver']", "''"}) {
        service.turnTo("'power-saver'");
        EXPECT_TRUE(comesToBe(true)) << garbage;
        service.turnTo(garbage);
        EXPECT_TRUE(comesToBe(false)) << garbage;
    }
    service.turnTo("'power-saver'");
    EXPECT_TRUE(comesToBe(true));
    service.say("{'ActiveProfile': <'balanced'>}");
    EXPECT_TRUE(comesToBe(false));
    service.say("@a{sv} {}", "['Other', 'ActiveProfile']");
    EXPECT_TRUE(comesToBe(true)) << "which the property itself still says";
    const std::string name = std::string("('") + kNewName.name + "'";
    service.sayAnything(name + ",)");
    service.sayAnything(name + ", {'ActiveProfile': <'balanced'>})");
    service.sayAnything(name + ", [''])");
    service.say("{'Other': <2>}");
    EXPECT_TRUE(hearsAll(*connection));
    EXPECT_TRUE(isLow);
}

TEST_F(PowerProfileTest, StartsNoService) {
    const std::string mark = bus.folder() + "/started";
    for (const auto& place : {kOldName, kNewName})
        bus.makeActivatable(place.name, "/usr/bin/touch " + mark);
    machine.write(kFirmwareFile, "quiet\n");
    begin(bus.address());
    EXPECT_TRUE(comesToBe(true)) << "both names were asked for when the firmware is";
    EXPECT_EQ(connection->state(), BusConnection::State::connected);
    EXPECT_FALSE(std::filesystem::exists(mark));
}

TEST_F(PowerProfileTest, ReadsTheFirmwareAgainAndAgainWhereThereIsNoService) {
    for (const std::string& address : {std::string(), bus.address()}) {
        machine.write(kFirmwareFile, "low-power\n");
        begin(address);
        EXPECT_TRUE(comesToBe(true));
        machine.write(kFirmwareFile, "balanced\n");
        EXPECT_TRUE(comesToBe(false));
        machine.write(kFirmwareFile, "quiet\n");
        EXPECT_TRUE(comesToBe(true));
        machine.remove(kFirmwareFile);
        EXPECT_TRUE(comesToBe(false));
    }
    {
        const Service service(bus, kOldName, "'balanced'");
        ASSERT_TRUE(hearsAll(*connection));
        machine.write(kFirmwareFile, "low-power\n");
    }
    EXPECT_TRUE(comesToBe(true)) << "looked for when the service has gone";
    const Service service(bus, kNewName, "'balanced'");
    EXPECT_TRUE(comesToBe(false)) << "and left when one comes";
}

TEST_F(PowerProfileTest, NeedsNoLaneWhereTheFirmwareHasNoProfileOrAServiceIsThere) {
    std::vector<Task> tasks;
    beginWith(std::make_unique<HeldLane>(tasks));
    {
        const Service service(bus, kOldName);
        EXPECT_TRUE(comesToBe(true));
    }
    EXPECT_TRUE(comesToBe(false));
    machine.write(kFirmwareFile, "low-power\n");
    {
        const Service silent(bus, kOldName, "");
        ASSERT_TRUE(hearsAll(*connection));
        beginWith(std::make_unique<HeldLane>(tasks));
        EXPECT_TRUE(runUntil([&] { return silent.isAsked(2); }));
        silent.say("{'Other': <2>}");  // heard after the answer
        ASSERT_TRUE(hearsAll(*connection));
        EXPECT_TRUE(tasks.empty());
    }
    EXPECT_TRUE(runUntil([&] { return !tasks.empty(); }));
}

TEST_F(PowerProfileTest, GoesAwayWhileTheFirmwareIsBeingRead) {
    machine.write(kFirmwareFile, "low-power\n");
    std::vector<Task> tasks;
    beginWith(std::make_unique<HeldLane>(tasks));
    ASSERT_TRUE(runUntil([&] { return tasks.size() >= 2; }));
    tasks[0]();
    profile.reset();
    tasks[1]();
    turnToTheEnd();
    EXPECT_FALSE(isLow);
}

}  // namespace
}  // namespace norvane
