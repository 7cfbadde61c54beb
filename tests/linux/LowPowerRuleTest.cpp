#include <gtest/gtest.h>

#include <optional>

#include "platform/linux/FirmwareProfileFiles.h"
#include "platform/linux/LowPowerRule.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

TEST(LowPowerRule, HeedsTheFirstServiceThatTellsAndElseTheFirmware) {
    using P = ProfileService;
    using F = FirmwareProfile;
    struct Case {
        P first;
        P second;
        F firmware;
        std::optional<bool> isLow;
    };
    for (const Case& c : {
             Case{P::powerSaver, P::otherProfile, F::otherProfile, true},
             Case{P::otherProfile, P::powerSaver, F::lowPower, false},
             Case{P::absent, P::powerSaver, F::absent, true},
             Case{P::absent, P::otherProfile, F::lowPower, false},
             // A service that tells nothing hides the firmware, not the other service.
             Case{P::silent, P::powerSaver, F::absent, true},
             Case{P::silent, P::absent, F::lowPower, false},
             Case{P::absent, P::silent, F::lowPower, false},
             Case{P::silent, P::silent, F::lowPower, false},
             // What has not answered may yet be the first that tells.
             Case{P::unknown, P::powerSaver, F::lowPower, std::nullopt},
             Case{P::absent, P::unknown, F::lowPower, std::nullopt},
             Case{P::silent, P::unknown, F::lowPower, std::nullopt},
             Case{P::powerSaver, P::unknown, F::absent, true},
             // No service at all
             Case{P::absent, P::absent, F::lowPower, true},
             Case{P::absent, P::absent, F::otherProfile, false},
             Case{P::absent, P::absent, F::absent, false},
             Case{P::absent, P::absent, F::unknown, std::nullopt},
         }) {
        EXPECT_EQ(isLowPower({c.first, c.second}, c.firmware), c.isLow)
            << static_cast<int>(c.first) << ' ' << static_cast<int>(c.second) << ' '
            << static_cast<int>(c.firmware);
    }
}

TEST(LowPowerRule, KnowsWhichProfilesSavePower) {
    for (const char* text : {"low-power", "quiet", "quiet\n", " low-power \n"}) {
        EXPECT_EQ(firmwareTelling(text), FirmwareProfile::lowPower) << text;
    }
    for (const char* text : {"", "\n", "cool", "balanced", "balanced-performance", "performance", "custom",
                             "low-power quiet", "Quiet", "power-saver"}) {
        EXPECT_EQ(firmwareTelling(text), FirmwareProfile::otherProfile) << text;
    }
    EXPECT_EQ(serviceTelling("power-saver"), ProfileService::powerSaver);
    for (const char* text : {"", "balanced", "performance", "low-power", "power-saver\n"})
        EXPECT_EQ(serviceTelling(text), ProfileService::otherProfile) << text;
}

class FirmwareProfileFilesTest : public testing::Test {
 protected:
    TemporaryFolder machine;
    FirmwareProfileFiles files{machine.root()};

    bool isThere() const { return FirmwareProfileFiles::isThere(machine.root()); }
};

constexpr const char* kCommonFile = "/sys/firmware/acpi/platform_profile";

TEST_F(FirmwareProfileFilesTest, HeedsTheCommonFileBeforeTheDrivers) {
    EXPECT_FALSE(isThere());
    EXPECT_EQ(files.read(), FirmwareProfile::absent);
    machine.write("/sys/class/platform-profile/platform-profile-0/profile", "quiet\n");
    EXPECT_TRUE(isThere());
    EXPECT_EQ(files.read(), FirmwareProfile::lowPower);
    machine.write(kCommonFile, "balanced\n");
    EXPECT_EQ(files.read(), FirmwareProfile::otherProfile);
    machine.write(kCommonFile, "low-power\n");
    EXPECT_EQ(files.read(), FirmwareProfile::lowPower);
    machine.remove("/sys");
    EXPECT_FALSE(isThere());
    EXPECT_EQ(files.read(), FirmwareProfile::absent);
}

TEST_F(FirmwareProfileFilesTest, TakesAnyDriverThatSavesPower) {
    machine.write("/sys/class/platform-profile/platform-profile-0/profile", "balanced\n");
    machine.write("/sys/class/platform-profile/platform-profile-1/profile", "low-power\n");
    machine.write("/sys/class/platform-profile/platform-profile-2/profile", "performance\n");
    EXPECT_EQ(files.read(), FirmwareProfile::lowPower);
    machine.write("/sys/class/platform-profile/platform-profile-1/profile", "custom\n");
    EXPECT_EQ(files.read(), FirmwareProfile::otherProfile);
}

TEST_F(FirmwareProfileFilesTest, StaysAtTheLastAnswerWhileThereIsNone) {
    machine.write(kCommonFile, "quiet\n");
    EXPECT_EQ(files.read(), FirmwareProfile::lowPower);
    machine.write(kCommonFile, std::string(5000, 'x'));
    EXPECT_EQ(files.read(), FirmwareProfile::lowPower);
    machine.remove(kCommonFile);
    machine.makeFolder(kCommonFile);
    EXPECT_EQ(files.read(), FirmwareProfile::lowPower) << "opens, and cannot be read";
    machine.write("/sys/class/platform-profile/platform-profile-0/profile", "cool\n");
    EXPECT_EQ(files.read(), FirmwareProfile::otherProfile);
}

}  // namespace
}  // namespace norvane
