#include "telemetry/DeviceIdentity.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "platform/scripted/ScriptedSysctl.h"

namespace norvane {
namespace {

TEST(DeviceIdentity, NamesAModelByTheFirstTextThatItsIdentifierContains) {
    struct Case {
        std::optional<std::string> identifier;
        const char* name;
        const char* icon;
    };
    for (const Case& c : {Case{"MacBookPro18,3", "MacBook Pro", "laptopcomputer"},
                          {"MacBookAir10,1", "MacBook Air", "laptopcomputer"},
                          {"MacBook10,1", "MacBook", "laptopcomputer"},
                          {"Macmini9,1", "Mac mini", "macmini"},
                          {"iMac21,1", "iMac", "desktopcomputer"},
                          {"MacPro7,1", "Mac Pro", "macpro.gen3.fill"},
                          {"Mac14,2", "MacBook", "laptopcomputer"},
                          {"MacPro and MacBookAir", "MacBook Air", "laptopcomputer"},
                          {"macbookpro18,3", "Mac", "applelogo"},
                          {std::string("Laptop\0iMac", 11), "Mac", "applelogo"},
                          {"", "Mac", "applelogo"},
                          {std::nullopt, "Mac", "applelogo"}}) {
        ScriptedSysctl sysctl;
        sysctl.text(SysctlText::hw_model).always(c.identifier);
        EXPECT_EQ(DeviceIdentity(sysctl).deviceModel(), (DeviceModel{c.name, c.icon}))
            << c.identifier.value_or("a failed read");
    }
}

TEST(DeviceIdentity, IsAnArmMachineIfTheSystemSaysExactlyOne) {
    for (const std::optional<std::int64_t> answer : {0, 1, 2}) {
        ScriptedSysctl sysctl;
        sysctl.number(SysctlNumber::hw_optional_arm64).always(answer);
        EXPECT_EQ(DeviceIdentity(sysctl).isAppleSilicon(), answer == 1) << *answer;
    }
}

TEST(DeviceIdentity, AsksOnceAlsoWhereTheAnswerIsNone) {
    ScriptedSysctl sysctl;
    DeviceIdentity identity(sysctl);
    EXPECT_EQ(sysctl.text(SysctlText::hw_model).asked(), 0U) << "on first need";
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(identity.deviceModel().name, "Mac");
        EXPECT_FALSE(identity.isAppleSilicon());
        sysctl.text(SysctlText::hw_model).always("iMac21,1");
        sysctl.number(SysctlNumber::hw_optional_arm64).always(1);
    }
    EXPECT_EQ(sysctl.text(SysctlText::hw_model).asked(), 1U);
    EXPECT_EQ(sysctl.number(SysctlNumber::hw_optional_arm64).asked(), 1U);
}

}  // namespace
}  // namespace norvane
