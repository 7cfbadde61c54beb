#include "platform/linux/LinuxPowerProfile.h"

#include "BusTest.h"
#include "linux/TemporaryFolder.h"
#include "platform/linux/ThreadLane.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kFirmwareFile = "/sys/firmware/acpi/platform_profile";
constexpr const char* kOldName = "net.hadess.PowerProfiles";
constexpr const char* kNewName = "org.freedesktop.UPower.PowerProfiles";

// A lane that keeps what it is given.
struct HeldLane final : Lane {
    explicit HeldLane(std::vector<Task>& kept) : tasks(kept) {}
    bool post(Task task) override {
        tasks.push_back(std::move(task));
        return true;
    }
    std::vector<Task>& tasks;
};

class PowerProfileTest : public BusTest {
 protected:
    void begin(const std::string& address,
               std::unique_ptr<Lane> lane = std::make_unique<ThreadLane>("test")) {
        profile.reset();
        connection = std::make_unique<BusConnection>(queue, address, kAtOnce);
        profile = std::make_unique<LinuxPowerProfile>(queue, *connection, machine.root(), std::move(lane),
                                                      isLow, 2ms);
    }
    std::unique_ptr<PlayedService> service(const char* name, const PlayedService::Answer& active) {
        return std::make_unique<PlayedService>(bus, name, [active](const auto&) { return active; });
    }
    bool comesToBe(bool low) {
        return runUntil([&] { return isLow.load() == low; });
    }

    TemporaryFolder machine;
    std::atomic<bool> isLow{false};
    std::unique_ptr<BusConnection> connection;
    std::unique_ptr<LinuxPowerProfile> profile;
};

TEST_F(PowerProfileTest, IsTheNewNamesThenTheOldOnesThenTheFirmwaresReadAgainAndAgain) {
    for (const std::string& address : {std::string(), bus.address()}) {
        machine.write(kFirmwareFile, "low-power\n");
        begin(address);
        EXPECT_TRUE(comesToBe(true)) << address;
        machine.write(kFirmwareFile, "balanced\n");
        EXPECT_TRUE(comesToBe(false)) << address;
    }
    machine.write(kFirmwareFile, "quiet\n");
    EXPECT_TRUE(comesToBe(true));
    auto old = service(kOldName, {"(<'balanced'>,)"});
    EXPECT_TRUE(comesToBe(false)) << "the firmware is left when one comes";
    {
        const auto modern = service(kNewName, {"(<'power-saver'>,)"});
        EXPECT_TRUE(comesToBe(true));
    }
    EXPECT_TRUE(comesToBe(false));
    old.reset();
    EXPECT_TRUE(comesToBe(true)) << "the firmware again";
    machine.remove(kFirmwareFile);
    EXPECT_TRUE(comesToBe(false));
}

TEST_F(PowerProfileTest, ReadsNoFirmwareThatIsNotThereOrNotAskedAndBearsToGoMeanwhile) {
    std::vector<Task> tasks;
    begin(bus.address(), std::make_unique<HeldLane>(tasks));
    {
        const auto there = service(kOldName, {"(<'power-saver'>,)"});
        EXPECT_TRUE(comesToBe(true));
    }
    EXPECT_TRUE(comesToBe(false));
    machine.write(kFirmwareFile, "low-power\n");
    {
        const auto silent = service(kOldName, {.error = "org.example.No"});
        begin(bus.address(), std::make_unique<HeldLane>(tasks));
        EXPECT_TRUE(runUntil([&] { return silent->calls().size() >= 1; }));
        silent->emit("/", "org.example", "Nothing", "()");  // heard after the answer
        ASSERT_TRUE(hearsAll(*connection));
        EXPECT_TRUE(tasks.empty());
    }
    ASSERT_TRUE(runUntil([&] { return tasks.size() >= 2; }));
    tasks[0]();
    profile.reset();
    tasks[1]();
    turnToTheEnd();
    EXPECT_FALSE(isLow);
}

}  // namespace
}  // namespace norvane
