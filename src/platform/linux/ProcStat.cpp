#include "platform/linux/ProcStat.h"

#include <array>
#include <cstddef>

#include "platform/linux/KernelText.h"
#include "platform/linux/Saturated.h"

namespace norvane {

namespace {

enum Column : std::size_t { user, nice, system, idle, iowait, irq, softirq, columnCount };

// Old kernels end after `idle`, or somewhere before `softirq`.
constexpr std::size_t kLeastColumns = idle + 1;

std::optional<CPUTicks> parseColumns(std::string_view line) {
    std::array<std::uint64_t, columnCount> columns{};
    std::size_t count = 0;
    while (count < columnCount) {
        const auto number = takeNumber(line);
        if (!number) break;
        columns[count++] = *number;
    }
    if (count < kLeastColumns) return std::nullopt;
    CPUTicks ticks;
    ticks.user = columns[user];
    ticks.nice = columns[nice];
    ticks.system = saturatedSum(columns[system], saturatedSum(columns[irq], columns[softirq]));
    ticks.idle = saturatedSum(columns[idle], columns[iowait]);
    return ticks;
}

}  // namespace

std::optional<CPUTicks> parseMachineTicks(std::string_view procStat) {
    while (!procStat.empty()) {
        std::string_view line = takeLine(procStat);
        if (takeWord(line) == "cpu") return parseColumns(line);
    }
    return std::nullopt;
}

void parseProcessorTicks(std::string_view procStat, std::vector<ProcessorTicks>& processors) {
    processors.clear();
    while (!procStat.empty()) {
        std::string_view line = takeLine(procStat);
        // The line of interrupts may be megabytes long; take no word from it.
        if (line.substr(0, 3) != "cpu") continue;
        const auto number = numberAfter("cpu", takeWord(line));
        if (!number) continue;
        if (const auto ticks = parseColumns(line)) processors.push_back({*number, *ticks});
    }
}

}  // namespace norvane
