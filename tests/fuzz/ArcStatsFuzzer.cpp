#include "platform/linux/ArcStats.h"
#include "Property.h"

namespace norvane {

void check(std::string_view text) {
    const auto stats = parseArcStats(text);
    require(parseArcStats(amongUnknownLines(text)) == stats, "unknown lines don't matter");
    if (!stats) return;
    require(text.find("size") != std::string_view::npos && text.find("c_min") != std::string_view::npos,
            "there is no value without both lines");
    const std::string printed = "name type data\nsize 4 " + std::to_string(stats->size) +
                                "\nc 4 5\nc_min                           4    " +
                                std::to_string(stats->cMin) + '\n';
    require(parseArcStats(printed) == stats, "the values survive printing");
}

}  // namespace norvane
