#include <array>
#include <utility>

#include "platform/linux/MemInfo.h"
#include "Property.h"

namespace norvane {
namespace {

constexpr std::array kLines{
    std::pair{"SReclaimable:", &MemInfo::sReclaimable},
    std::pair{"KReclaimable:", &MemInfo::kReclaimable},
    std::pair{"Shmem:", &MemInfo::shmem},
    std::pair{"AnonPages:", &MemInfo::anonPages},
    std::pair{"Zswapped:", &MemInfo::zswapped},
    std::pair{"Zswap:", &MemInfo::zswap},
    std::pair{"SwapFree:", &MemInfo::swapFree},
    std::pair{"SwapTotal:", &MemInfo::swapTotal},
    std::pair{"Cached:", &MemInfo::cached},
    std::pair{"Buffers:", &MemInfo::buffers},
    std::pair{"MemAvailable:", &MemInfo::memAvailable},
    std::pair{"MemFree:", &MemInfo::memFree},
    std::pair{"MemTotal:", &MemInfo::memTotal},
};

bool areSame(const MemInfo& one, const MemInfo& other) {
    for (const auto& [name, member] : kLines) {
        if (one.*member != other.*member) return false;
    }
    return true;
}

// The least number of kibibytes that is read as so many bytes.
std::uint64_t kibibytes(std::uint64_t bytes) {
    return bytes / 1024 + (bytes % 1024 == 0 ? 0 : 1);
}

}  // namespace

void check(std::string_view text) {
    const MemInfo info = parseMemInfo(text);
    require(areSame(parseMemInfo(amongUnknownLines(text)), info), "unknown lines don't matter");
    require(areSame(parseMemInfo(std::string(text) + '\n' + std::string(text)), info),
            "the first of two lines counts");
    // Backwards: the order of the lines is the kernel's business.
    std::string printed;
    for (const auto& [name, member] : kLines) {
        if (!(info.*member)) continue;
        require(hasLine(text, name), "there is no value without its line");
        printed += std::string(name) + "  " + std::to_string(kibibytes(*(info.*member))) + " kB\n";
    }
    require(areSame(parseMemInfo(printed), info), "the values survive printing");
}

}  // namespace norvane
