#include <gtest/gtest.h>

#include "platform/linux/FirmwareProfileFiles.h"
#include "platform/linux/LowPowerRule.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

// That a service is heeded before the firmware, and one that tells nothing hides it, is seen on a bus.
TEST(LowPowerRule, WaitsForWhatMayYetBeTheFirstThatTells) {
    using P = ProfileService;
    using F = FirmwareProfile;
    const auto isLow = [](P first, P second, F firmware) { return isLowPower({first, second}, firmware); };
    EXPECT_EQ(isLow(P::unknown, P::powerSaver, F::lowPower), std::nullopt);
    EXPECT_EQ(isLow(P::silent, P::unknown, F::lowPower), std::nullopt);
    EXPECT_EQ(isLow(P::absent, P::absent, F::unknown), std::nullopt);
    EXPECT_EQ(isLow(P::powerSaver, P::unknown, F::absent), true);
    EXPECT_EQ(isLow(P::silent, P::absent, F::lowPower), false);
    EXPECT_EQ(isLow(P::absent, P::silent, F::lowPower), false);
    for (const char* text : {"", "cool", "balanced", "low-power quiet", "Quiet", "power-saver"})
        EXPECT_EQ(firmwareTelling(text), F::otherProfile) << text;
    for (const char* text : {"", "balanced", "low-power", "power-saver\n"})
        EXPECT_EQ(serviceTelling(text), P::otherProfile) << text;
}

TEST(FirmwareProfileFiles, HeedTheCommonFileBeforeAnyDriverAndStayWhereTheyWereWhileThereIsNoAnswer) {
    constexpr const char* kCommonFile = "/sys/firmware/acpi/platform_profile";
    const std::string driver = "/sys/class/platform-profile/platform-profile-";
    const TemporaryFolder machine;
    FirmwareProfileFiles files(machine.root());
    EXPECT_FALSE(FirmwareProfileFiles::isThere(machine.root()));
    EXPECT_EQ(files.read(), FirmwareProfile::absent);
    machine.write(driver + "0/profile", "balanced\n");
    machine.write(driver + "1/profile", " low-power \n");
    EXPECT_TRUE(FirmwareProfileFiles::isThere(machine.root()));
    EXPECT_EQ(files.read(), FirmwareProfile::lowPower) << "any driver";
    machine.write(kCommonFile, "balanced\n");
    EXPECT_EQ(files.read(), FirmwareProfile::otherProfile) << "the common file first";
    machine.remove("/sys/class");
    machine.write(kCommonFile, std::string(5000, 'x'));
    EXPECT_EQ(files.read(), FirmwareProfile::otherProfile) << "too long for an answer";
    machine.remove("/sys");
    EXPECT_EQ(files.read(), FirmwareProfile::absent);
}

}  // namespace
}  // namespace norvane
