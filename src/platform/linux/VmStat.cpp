#include "platform/linux/VmStat.h"

#include "platform/linux/KernelText.h"

namespace norvane {

std::optional<VmStat> parseVmStat(std::string_view text) {
    std::optional<std::uint64_t> in;
    std::optional<std::uint64_t> out;
    while (!text.empty() && !(in && out)) {
        std::string_view line = takeLine(text);
        const std::string_view name = takeWord(line);
        if (name == "pswpin") {
            in = takeNumber(line);
        } else if (name == "pswpout") {
            out = takeNumber(line);
        }
    }
    if (!in || !out) return std::nullopt;
    return VmStat{*in, *out};
}

}  // namespace norvane
