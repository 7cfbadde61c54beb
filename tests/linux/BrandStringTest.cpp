#include "platform/linux/BrandString.h"

#include <gtest/gtest.h>

#include "TemporaryFolder.h"

namespace norvane {
namespace {

std::string armBlock(const char* part) {
    return std::string("CPU implementer : 0x41\nCPU part : ") + part + "\n\n";
}

TEST(BrandString, IsWhatEachArchitectureCallsIt) {
    struct Case {
        const char* name;
        std::string cpuInfo;
        std::optional<std::string> want;
    };
    for (const Case& c : {
             Case{"x86", "processor\t: 0\ncpu family\t: 6\nmodel name\t: Intel(R)  Xeon(R)   CPU @ 2.60GHz\n",
                  "Intel(R) Xeon(R) CPU @ 2.60GHz"},
             Case{"the first of several", "model name : A\n\nmodel name : B\n", "A"},
             Case{"LoongArch", "CPU Family : Loongson-64bit\nModel Name : Loongson-3A5000\n",
                  "Loongson-3A5000"},
             Case{"MIPS", "system type : x\ncpu model : Cavium Octeon III V0.2\n", "Cavium Octeon III V0.2"},
             Case{"POWER", "cpu : POWER9, altivec supported\n", "POWER9, altivec supported"},
             Case{"RISC-V", "isa : rv64imafdc\nuarch : sifive,u74-mc\n", "sifive,u74-mc"},
             Case{"ARM, one design", armBlock("0xd08") + armBlock("0xd08"), "Cortex-A72"},
             Case{"ARM, the largest first", armBlock("0xd05") + armBlock("0xd05") + armBlock("0xd0b"),
                  "Cortex-A76 + Cortex-A55"},
             Case{"ARM with an unknown design", armBlock("0xd05") + armBlock("0xfff"), "Cortex-A55"},
             Case{"the name of an instruction set",
                  "model name : ARMv7 Processor rev 4 (v7l)\n" + armBlock("0xc07") + "Hardware : BCM2835\n",
                  "Cortex-A7"},
             Case{"32-bit ARM of unknown design", armBlock("0xfff") + "Hardware : BCM2835\n", "BCM2835"},
             Case{"a name of blanks", "model name :  \t \ncpu model: B\n", "B"},
             Case{"garbage", "\xff\xfe:\n:::\nCPU part : 0xd05\nCPU implementer : \nmodel name", {}},
             Case{"nothing", "", {}},
         }) {
        TemporaryFolder machine;
        machine.write("/proc/cpuinfo", c.cpuInfo);
        EXPECT_EQ(readBrandString(machine.root()), c.want) << c.name;
    }
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
