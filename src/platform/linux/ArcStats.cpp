#include "platform/linux/ArcStats.h"

#include "platform/linux/KernelText.h"

namespace norvane {

std::optional<ArcStats> parseArcStats(std::string_view text) {
    std::optional<std::uint64_t> size;
    std::optional<std::uint64_t> cMin;
    while (!text.empty() && !(size && cMin)) {
        std::string_view line = takeLine(text);
        const std::string_view name = takeWord(line);
        if (name != "size" && name != "c_min") continue;
        takeWord(line);  // the column of types
        (name == "size" ? size : cMin) = takeNumber(line);
    }
    if (!size || !cMin) return std::nullopt;
    return ArcStats{*size, *cMin};
}

}  // namespace norvane
