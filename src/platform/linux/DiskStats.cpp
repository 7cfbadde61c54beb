#include "platform/linux/DiskStats.h"

#include "platform/linux/KernelText.h"

namespace norvane {

void parseDiskStats(std::string_view text, std::vector<DiskStatsLine>& lines) {
    lines.clear();
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        if (!takeNumber(line) || !takeNumber(line)) continue;  // the device's major and minor number
        const std::string_view name = takeWord(line);
        // From here on a line is what the device's own `stat` says.
        const auto stat = parseBlockStat(line);
        if (!name.empty() && stat) lines.push_back({name, *stat});
    }
}

}  // namespace norvane
