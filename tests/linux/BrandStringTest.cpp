#include "platform/linux/BrandString.h"

#include <gtest/gtest.h>

#include "TemporaryFolder.h"

namespace norvane {
namespace {

std::string armBlock(const char* part) {
    return std::string("CPU implementer : 0x41\nCPU part : ") + part + "\n\n";
}

TEST(BrandString, IsWhatEachArchitectureCallsIt) {
    const auto expect = [](const std::string& cpuInfo, const std::optional<std::string>& want) {
        TemporaryFolder machine;
        machine.write("/proc/cpuinfo", cpuInfo);
        EXPECT_EQ(readBrandString(machine.root()), want) << cpuInfo;
    };
    expect(
        "processor\t: 0\ncpu family\t: 6\nmodel name\t: Intel(R)  Xeon(R)   CPU @ 2.60GHz\nmodel name : B\n",
        "Intel(R) Xeon(R) CPU @ 2.60GHz");
    expect("CPU Family : Loongson-64bit\nModel Name : Loongson-3A5000\n", "Loongson-3A5000");
    expect("system type : x\ncpu model : Cavium Octeon III V0.2\n", "Cavium Octeon III V0.2");
    expect("cpu : POWER9, altivec supported\n", "POWER9, altivec supported");
    expect("isa : rv64imafdc\nuarch : sifive,u74-mc\n", "sifive,u74-mc");
    expect(armBlock("0xd08") + armBlock("0xd08"), "Cortex-A72");
    expect(armBlock("0xd05") + armBlock("0xfff") + armBlock("0xd0b"), "Cortex-A76 + Cortex-A55");
    expect("model name : ARMv7 Processor rev 4 (v7l)\n" + armBlock("0xc07") + "Hardware : BCM2835\n",
           "Cortex-A7");
    expect(armBlock("0xfff") + "Hardware : BCM2835\n", "BCM2835");
    expect("model name :  \t \ncpu model: B\n", "B");
    expect("\xff\xfe:\n:::\nCPU part : 0xd05\nCPU implementer : \nmodel name", {});
    expect("", {});
}

TEST(BrandString, FallsBackToTheChipTheBoardAndTheModel) {
    TemporaryFolder machine;
    machine.write("/sys/class/dmi/id/product_name", "Some  Model\n");
    EXPECT_EQ(readBrandString(machine.root()), "Some Model") << "without any /proc";
    machine.write("/proc/device-tree/model", std::string_view("A Board\0rest", 12));
    EXPECT_EQ(readBrandString(machine.root()), "A Board");
    machine.write("/sys/devices/soc0/machine", "A Chip\n");
    EXPECT_EQ(readBrandString(machine.root()), "A Chip");
    machine.write("/sys/devices/soc0/machine", "\n");
    EXPECT_EQ(readBrandString(machine.root()), "A Board");
}

}  // namespace
}  // namespace norvane
