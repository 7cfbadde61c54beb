#include "platform/linux/MemInfo.h"

#include <algorithm>
#include <array>

#include "platform/linux/KernelText.h"
#include "platform/linux/Saturated.h"

namespace norvane {

namespace {

struct Key {
    std::string_view name;
    MemInfo::Bytes MemInfo::*value;
};

constexpr std::array kKeys{
    Key{"MemTotal", &MemInfo::memTotal},
    Key{"MemFree", &MemInfo::memFree},
    Key{"MemAvailable", &MemInfo::memAvailable},
    Key{"Buffers", &MemInfo::buffers},
    Key{"Cached", &MemInfo::cached},
    Key{"SwapTotal", &MemInfo::swapTotal},
    Key{"SwapFree", &MemInfo::swapFree},
    Key{"Zswap", &MemInfo::zswap},
    Key{"Zswapped", &MemInfo::zswapped},
    Key{"AnonPages", &MemInfo::anonPages},
    Key{"Shmem", &MemInfo::shmem},
    Key{"KReclaimable", &MemInfo::kReclaimable},
    Key{"SReclaimable", &MemInfo::sReclaimable},
};

}  // namespace

MemInfo parseMemInfo(std::string_view text) {
    MemInfo info;
    std::size_t found = 0;
    while (!text.empty() && found < kKeys.size()) {
        std::string_view line = takeLine(text);
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) continue;
        const std::string_view name = line.substr(0, colon);
        const auto key =
            std::find_if(kKeys.begin(), kKeys.end(), [&](const Key& k) { return k.name == name; });
        if (key == kKeys.end() || info.*(key->value)) continue;
        line.remove_prefix(colon + 1);
        const auto kibibytes = takeNumber(line);
        if (!kibibytes) continue;
        info.*(key->value) = saturatedProduct(*kibibytes, 1024);
        ++found;
    }
    return info;
}

}  // namespace norvane
