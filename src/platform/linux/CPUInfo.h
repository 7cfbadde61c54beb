#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/ArmPart.h"

namespace norvane {

// What /proc/cpuinfo says about the name of the processor; each architecture has words of its own. Texts are
// the first value of their key, blanks collapsed, and empty where there is none.
struct CPUInfo {
    std::string modelName;  // x86, some ARM; LoongArch
    std::string cpuModel;   // MIPS
    std::string cpu;        // POWER
    std::string uarch;      // RISC-V
    std::string hardware;   // 32-bit ARM: the board's chip
    // ARM: each design once, in order of appearance.
    std::vector<ArmPart> armParts;
};

CPUInfo parseCPUInfo(std::string_view text);

}  // namespace norvane
