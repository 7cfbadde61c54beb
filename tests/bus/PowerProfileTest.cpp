#include "platform/linux/LinuxPowerProfile.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "BusPeer.h"
#include "linux/RunLoop.h"
#include "linux/TemporaryFolder.h"
#include "MockService.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/ThreadLane.h"
#include "PrivateBus.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr BusConnection::Pace kAtOnce{.firstAttempt = 0ns, .firstPause = 5ms, .longestPause = 20ms};
constexpr MockService::Place kOldName{"net.hadess.PowerProfiles", "/net/hadess/PowerProfiles",
                                      "net.hadess.PowerProfiles"};
constexpr MockService::Place kNewName{"org.freedesktop.UPower.PowerProfiles",
                                      "/org/freedesktop/UPower/PowerProfiles",
                                      "org.freedesktop.UPower.PowerProfiles"};
constexpr const char* kFirmwareFile = "/sys/firmware/acpi/platform_profile";

class PowerProfileTest : public testing::Test {
 protected:
    void SetUp() override { begin(bus.address()); }
    void TearDown() override { profile.reset(); }

    void begin(const std::string& address) {
        profile.reset();
        connection = std::make_unique<BusConnection>(queue, address, kAtOnce);
        profile = std::make_unique<LinuxPowerProfile>(queue, *connection, machine.root(),
                                                      std::make_unique<ThreadLane>("test"), isLow, 2ms);
    }
    bool comesToBe(bool low) {
        return runUntil([&] { return isLow.load() == low; });
    }
    // The bus hands over in order: its answer comes after whatever was sent before.
    bool hasHeardAllSignals() {
        bool isAnswered = false;
        const auto call = connection->call({.name = "org.freedesktop.DBus",
                                            .path = "/org/freedesktop/DBus",
                                            .interface = "org.freedesktop.DBus",
                                            .method = "GetId"},
                                           [&](GVariant*, const GError*) { isAnswered = true; });
        return runUntil([&] { return isAnswered; });
    }
    bool isConnected() {
        return runUntil([&] { return connection->state() == BusConnection::State::connected; });
    }

    PrivateBus bus;
    TemporaryFolder machine;
    LinuxMainQueue queue;
    std::atomic<bool> isLow{false};
    std::unique_ptr<BusConnection> connection;
    std::unique_ptr<LinuxPowerProfile> profile;
};

TEST_F(PowerProfileTest, FollowsTheServiceOfTheOldNameAsItComesAndGoes) {
    ASSERT_TRUE(isConnected());
    for (const int round : {1, 2}) {
        const MockService service(bus, kOldName, "power_profiles_daemon",
                                  R"({"ActiveProfile": "power-saver"})");
        EXPECT_TRUE(comesToBe(true)) << round;
        service.updateProperty("ActiveProfile", "'balanced'");
        EXPECT_TRUE(comesToBe(false)) << round;
        service.updateProperty("ActiveProfile", "'power-saver'");
        EXPECT_TRUE(comesToBe(true)) << round;
    }
    EXPECT_TRUE(comesToBe(false)) << "gone";
}

TEST_F(PowerProfileTest, AsksAServiceThatWasThereBefore) {
    const MockService service(bus, kOldName, "power_profiles_daemon", R"({"ActiveProfile": "power-saver"})");
    begin(bus.address());
    EXPECT_TRUE(comesToBe(true));
}

TEST_F(PowerProfileTest, MovesFromTheOldNameToTheNewOneAndBack) {
    const MockService old(bus, kOldName, "power_profiles_daemon", R"({"ActiveProfile": "power-saver"})");
    EXPECT_TRUE(comesToBe(true));
    {
        const MockService modern(bus, kNewName);
        modern.addProperty("ActiveProfile", "'power-saver'");
        modern.updateProperty("ActiveProfile", "'performance'");
        EXPECT_TRUE(comesToBe(false)) << "the new name comes first";
        modern.updateProperty("ActiveProfile", "'power-saver'");
        EXPECT_TRUE(comesToBe(true));
        old.updateProperty("ActiveProfile", "'balanced'");
        modern.updateProperty("ActiveProfile", "'balanced'");
        EXPECT_TRUE(comesToBe(false));
        old.updateProperty("ActiveProfile", "'power-saver'");
    }
    EXPECT_TRUE(comesToBe(true)) << "the old one is left";
}

TEST_F(PowerProfileTest, AsksAnewWhatAServiceDeclaresOutdated) {
    const MockService service(bus, kOldName, "power_profiles_daemon", R"({"ActiveProfile": "power-saver"})");
    EXPECT_TRUE(comesToBe(true));
    service.emit("org.freedesktop.DBus.Properties", "PropertiesChanged", "sa{sv}as",
                 "[<'net.hadess.PowerProfiles'>, <{'ActiveProfile': <'balanced'>}>, <@as []>]");
    EXPECT_TRUE(comesToBe(false));
    service.emit("org.freedesktop.DBus.Properties", "PropertiesChanged", "sa{sv}as",
                 "[<'net.hadess.PowerProfiles'>, <@a{sv} {}>, <['Other', 'ActiveProfile']>]");
    EXPECT_TRUE(comesToBe(true)) << "which the property itself still says";
}

TEST_F(PowerProfileTest, TakesNoGarbageForAProfileNorAsksTheFirmwareForIt) {
    machine.write(kFirmwareFile, "low-power\n");
    const MockService service(bus, kNewName);
    service.addProperty("ActiveProfile", "'balanced'");
    service.addProperty("Other", "1");
    for (const char* const garbage : {"1", "true", "['power-saver']", "''"}) {
        service.updateProperty("ActiveProfile", "'power-saver'");
        EXPECT_TRUE(comesToBe(true)) << garbage;
        service.updateProperty("ActiveProfile", garbage);
        EXPECT_TRUE(comesToBe(false)) << garbage;
    }
    service.updateProperty("ActiveProfile", "'power-saver'");
    EXPECT_TRUE(comesToBe(true));
    for (const char* const signature : {"s", "sa{sv}", "sas"}) {
        service.emit("org.freedesktop.DBus.Properties", "PropertiesChanged", signature,
                     std::string_view(signature) == "s" ? "[<'org.freedesktop.UPower.PowerProfiles'>]"
                     : std::string_view(signature) == "sas"
                         ? "[<'org.freedesktop.UPower.PowerProfiles'>, <['']>]"
                         : "[<'org.freedesktop.UPower.PowerProfiles'>, "
                           "<{'ActiveProfile': <'balanced'>}>]");
    }
    service.updateProperty("Other", "2");
    EXPECT_TRUE(hasHeardAllSignals());
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
}

TEST_F(PowerProfileTest, LooksForTheFirmwareWhenTheServiceGoesAndLeavesItWhenOneComes) {
    ASSERT_TRUE(isConnected());
    {
        const MockService service(bus, kOldName, "power_profiles_daemon",
                                  R"({"ActiveProfile": "power-saver"})");
        EXPECT_TRUE(comesToBe(true));
        service.updateProperty("ActiveProfile", "'balanced'");
        EXPECT_TRUE(comesToBe(false));
        machine.write(kFirmwareFile, "low-power\n");
    }
    EXPECT_TRUE(comesToBe(true));
    const MockService service(bus, kNewName);
    service.addProperty("ActiveProfile", "'balanced'");
    EXPECT_TRUE(comesToBe(false));
    service.updateProperty("ActiveProfile", "'power-saver'");
    EXPECT_TRUE(comesToBe(true));
}

TEST_F(PowerProfileTest, OutlivesItsBus) {
    auto service = std::make_unique<MockService>(bus, kOldName, "power_profiles_daemon",
                                                 R"({"ActiveProfile": "power-saver"})");
    EXPECT_TRUE(comesToBe(true));
    bus.kill();
    EXPECT_TRUE(comesToBe(false));
    service.reset();
    bus.start();
    service = std::make_unique<MockService>(bus, kOldName, "power_profiles_daemon",
                                            R"({"ActiveProfile": "power-saver"})");
    EXPECT_TRUE(comesToBe(true));
}

// A lane that remembers what it was given.
class CountingLane final : public Lane {
 public:
    explicit CountingLane(std::vector<Task>& tasks) : tasks_(tasks) {}
    bool post(Task task) override {
        tasks_.push_back(std::move(task));
        return true;
    }

 private:
    std::vector<Task>& tasks_;
};

TEST_F(PowerProfileTest, NeedsNoLaneWhereTheFirmwareHasNoProfile) {
    std::vector<Task> tasks;
    profile = std::make_unique<LinuxPowerProfile>(queue, *connection, machine.root(),
                                                  std::make_unique<CountingLane>(tasks), isLow, 1ms);
    const MockService service(bus, kOldName, "power_profiles_daemon", R"({"ActiveProfile": "power-saver"})");
    EXPECT_TRUE(comesToBe(true));
    EXPECT_TRUE(tasks.empty());
}

TEST_F(PowerProfileTest, GoesAwayWhileTheFirmwareIsBeingRead) {
    machine.write(kFirmwareFile, "low-power\n");
    std::vector<Task> tasks;
    profile = std::make_unique<LinuxPowerProfile>(queue, *connection, machine.root(),
                                                  std::make_unique<CountingLane>(tasks), isLow, 1ms);
    ASSERT_TRUE(runUntil([&] { return tasks.size() >= 2; }));
    tasks[0]();
    profile.reset();
    tasks[1]();
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    EXPECT_FALSE(isLow);
}

}  // namespace
}  // namespace norvane
