#include "platform/linux/DiskStats.h"
#include "Property.h"

namespace norvane {
namespace {

std::vector<DiskStatsLine> linesIn(std::string_view text) {
    std::vector<DiskStatsLine> lines{{"left over", {1, 2}}};
    parseDiskStats(text, lines);
    return lines;
}

}  // namespace

void check(std::string_view text) {
    const std::vector<DiskStatsLine> lines = linesIn(text);
    require(lines.size() <= lineCount(text), "a device has a line of its own");
    const std::string amongOthers = amongUnknownLines(text);
    require(linesIn(amongOthers) == lines, "unknown lines don't matter");

    std::string printed;
    for (const DiskStatsLine& line : lines) {
        require(!line.name.empty() && line.name.find_first_of(" \t\n") == std::string_view::npos,
                "a name is one word");
        require(line.name.data() >= text.data() &&
                    line.name.data() + line.name.size() <= text.data() + text.size(),
                "a name lies in the text");
        printed += " 259  0 " + std::string(line.name) + " 1 2 " + std::to_string(line.stat.sectorsRead) +
                   " 4 5 6 " + std::to_string(line.stat.sectorsWritten) + " 8 9 10 11 12 13 14 15 16 17\n";
    }
    require(linesIn(printed) == lines, "the lines survive printing");
}

}  // namespace norvane
