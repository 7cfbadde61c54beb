#include <array>

#include "platform/linux/MemoryFigures.h"
#include "platform/linux/MemoryPressureLevel.h"
#include "Property.h"

namespace norvane {
namespace {

// The parts between lines "===": meminfo, arcstats, the pressure of memory.
std::array<std::string_view, 3> parts(std::string_view text) {
    constexpr std::string_view kSeparator = "===\n";
    std::array<std::string_view, 3> parts;
    for (std::string_view& part : parts) {
        const std::size_t end = std::min(text.find(kSeparator), text.size());
        part = text.substr(0, end);
        text.remove_prefix(std::min(end + kSeparator.size(), text.size()));
    }
    return parts;
}

void checkLevels(const MemoryFigures& figures, const std::optional<Pressure>& pressure) {
    const int level = memoryPressureLevel(figures, pressure);
    const int byAmounts = memoryPressureLevel(figures, {});
    require(level == 1 || level == 2 || level == 4, "a level is one of three");
    require(level >= byAmounts, "stalls make nothing better");
    MemoryFigures withRoom = figures;
    withRoom.available = withRoom.total;
    require(memoryPressureLevel(withRoom, pressure) <= level, "nor does room make it worse");
}

}  // namespace

void check(std::string_view text) {
    const auto [memInfoText, arcStatsText, pressureText] = parts(text);
    const MemInfo info = parseMemInfo(memInfoText);
    const auto arc = parseArcStats(arcStatsText);
    for (const std::uint64_t zramBytes : {std::uint64_t{0}, std::uint64_t{1} << 30, UINT64_MAX}) {
        const auto figures = memoryFigures(info, arc, zramBytes);
        require(figures.has_value() == (info.memTotal.value_or(0) > 0), "figures need a total, and no more");
        if (!figures) continue;
        require(figures->available <= figures->total, "no more is available than there is");
        require(figures->compressed <= figures->used() &&
                    figures->programs <= figures->used() - figures->compressed &&
                    figures->wired == figures->used() - figures->compressed - figures->programs,
                "the three parts are what is used");
        checkLevels(*figures, parsePressure(pressureText));
    }
}

}  // namespace norvane
