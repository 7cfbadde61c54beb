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
    const auto isLow = [](P first, P second, F firmware) { return isLowPower({first, second}, firmware); };
    EXPECT_EQ(isLow(P::powerSaver, P::otherProfile, F::otherProfile), true);
    EXPECT_EQ(isLow(P::otherProfile, P::powerSaver, F::lowPower), false);
    EXPECT_EQ(isLow(P::absent, P::powerSaver, F::absent), true);
    EXPECT_EQ(isLow(P::absent, P::otherProfile, F::lowPower), false);
    // A service that tells nothing hides the firmware, not the other service.
    EXPECT_EQ(isLow(P::silent, P::powerSaver, F::absent), true);
    EXPECT_EQ(isLow(P::silent, P::absent, F::lowPower), false);
    EXPECT_EQ(isLow(P::absent, P::silent, F::lowPower), false);
    // What has not answered may yet be the first that tells.
    EXPECT_EQ(isLow(P::unknown, P::powerSaver, F::lowPower), std::nullopt);
    EXPECT_EQ(isLow(P::absent, P::unknown, F::lowPower), std::nullopt);
    EXPECT_EQ(isLow(P::silent, P::unknown, F::lowPower), std::nullopt);
    EXPECT_EQ(isLow(P::powerSaver, P::unknown, F::absent), true);
    // No service at all.
    EXPECT_EQ(isLow(P::absent, P::absent, F::lowPower), true);
    EXPECT_EQ(isLow(P::absent, P::absent, F::otherProfile), false);
    EXPECT_EQ(isLow(P::absent, P::absent, F::absent), false);
    EXPECT_EQ(isLow(P::absent, P::absent, F::unknown), std::nullopt);
}

TEST(LowPowerRule, KnowsWhichProfilesSavePower) {
    for (const char* text : {"low-power", "quiet\n", " low-power \n"})
        EXPECT_EQ(firmwareTelling(text), FirmwareProfile::lowPower) << text;
    for (const char* text : {"", "cool", "balanced", "low-power quiet", "Quiet", "power-saver"})
        EXPECT_EQ(firmwareTelling(text), FirmwareProfile::otherProfile) << text;
    EXPECT_EQ(serviceTelling("power-saver"), ProfileService::powerSaver);
    for (const char* text : {"", "balanced", "low-power", "power-saver\n"})
        EXPECT_EQ(serviceTelling(text), ProfileService::otherProfile) << text;
}

class FirmwareProfileFilesTest : public testing::Test {
 protected:
    static constexpr const char* kCommonFile = "/sys/firmware/acpi/platform_profile";

    TemporaryFolder machine;
    FirmwareProfileFiles files{machine.root()};

    void setDriver(int number, const char* profile) {
        machine.write("/sys/class/platform-profile/platform-profile-" + std::to_string(number) + "/profile",
                      profile);
    }
    bool isThere() const { return FirmwareProfileFiles::isThere(machine.root()); }
};

TEST_F(FirmwareProfileFilesTest, HeedsTheCommonFileBeforeAnyDriverThatSavesPower) {
    EXPECT_FALSE(isThere());
    EXPECT_EQ(files.read(), FirmwareProfile::absent);
    setDriver(0, "balanced\n");
    setDriver(1, "quiet\n");
    setDriver(2, "performance\n");
    EXPECT_TRUE(isThere());
    EXPECT_EQ(files.read(), FirmwareProfile::lowPower);
    machine.write(kCommonFile, "balanced\n");
    EXPECT_EQ(files.read(), FirmwareProfile::otherProfile);
    machine.remove(kCommonFile);
    setDriver(1, "custom\n");
    EXPECT_EQ(files.read(), FirmwareProfile::otherProfile);
    machine.remove("/sys");
    EXPECT_FALSE(isThere());
    EXPECT_EQ(files.read(), FirmwareProfile::absent);
}

TEST_F(FirmwareProfileFilesTest, StaysAtTheLastAnswerWhileThereIsNone) {
    machine.write(kCommonFile, "quiet\n");
    EXPECT_EQ(files.read(), FirmwareProfile::lowPower);
    machine.write(kCommonFile, std::string(5000, 'x'));
    EXPECT_EQ(files.read(), FirmwareProfile::lowPower);
    machine.remove(kCommonFile);
    machine.makeFolder(kCommonFile);
    EXPECT_EQ(files.read(), FirmwareProfile::lowPower) << "opens, and cannot be read";
    setDriver(0, "cool\n");
    EXPECT_EQ(files.read(), FirmwareProfile::otherProfile);
}

}  // namespace
}  // namespace norvane
