#include <algorithm>
#include <array>
#include <utility>

#include "platform/linux/CPUInfo.h"
#include "platform/linux/KernelText.h"
#include "Property.h"

namespace norvane {
namespace {

constexpr std::array kNames{
    std::pair{"model name", &CPUInfo::modelName},
    std::pair{"cpu model", &CPUInfo::cpuModel},
    std::pair{"cpu", &CPUInfo::cpu},
    std::pair{"uarch", &CPUInfo::uarch},
    std::pair{"Hardware", &CPUInfo::hardware},
};

bool areSame(const CPUInfo& one, const CPUInfo& other) {
    return one.armParts == other.armParts && std::all_of(kNames.begin(), kNames.end(), [&](const auto& name) {
               return one.*(name.second) == other.*(name.second);
           });
}

std::string hexadecimal(std::uint32_t number) {
    std::string digits;
    for (int shift = 28; shift >= 0; shift -= 4)
        digits += "0123456789abcdef"[(number >> shift) & 0xf];
    return "0x" + digits;
}

}  // namespace

void check(std::string_view text) {
    const CPUInfo info = parseCPUInfo(text);
    require(areSame(parseCPUInfo(amongUnknownLines(text)), info), "unknown lines don't matter");

    std::string printed;
    for (const auto& [name, member] : kNames) {
        require(info.*member == collapsed(info.*member), "a name is one line without needless blanks");
        printed += std::string(name) + "\t: " + info.*member + '\n';
    }
    require(info.armParts.size() <= 16, "the number of designs has a bound");
    for (auto part = info.armParts.begin(); part != info.armParts.end(); ++part) {
        require(std::find(part + 1, info.armParts.end(), *part) == info.armParts.end(),
                "each design is there once");
        require(rankOf(*part) >= 0, "each has a rank");
        require(nameOf(*part).size() < 32, "and a name, or none");
        printed += "CPU implementer : " + hexadecimal(part->implementer) +
                   "\nCPU part\t: " + hexadecimal(part->part) + '\n';
    }
    require(areSame(parseCPUInfo(printed), info), "the names and designs survive printing");
}

}  // namespace norvane
