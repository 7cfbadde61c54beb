#include "platform/linux/BlockStat.h"
#include "Property.h"

namespace norvane {

void check(std::string_view text) {
    const auto stat = parseBlockStat(text);
    require(parseBlockStat(beforeUnknownLines(text)) == stat, "only the first line counts");
    if (!stat) return;
    const std::string line(text.substr(0, text.find('\n')));
    require(parseBlockStat(line + " 7 8 9\n") == stat, "columns of newer kernels don't matter");
    const std::string printed = "1 2 " + std::to_string(stat->sectorsRead) + " 4 5 6 " +
                                std::to_string(stat->sectorsWritten) + " 8 9 10 11\n";
    require(parseBlockStat(printed) == stat, "the values survive printing");
}

}  // namespace norvane
