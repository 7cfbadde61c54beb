#include "platform/linux/VmStat.h"
#include "Property.h"

namespace norvane {

void check(std::string_view text) {
    const auto stat = parseVmStat(text);
    require(parseVmStat(amongUnknownLines(text)) == stat, "unknown lines don't matter");
    if (!stat) return;
    require(text.find("pswpin") != std::string_view::npos && text.find("pswpout") != std::string_view::npos,
            "there is no value without both lines");
    const std::string printed = "pswpout " + std::to_string(stat->pswpout) + "\nnr_free_pages 5\npswpin " +
                                std::to_string(stat->pswpin) + '\n';
    require(parseVmStat(printed) == stat, "the values survive printing");
}

}  // namespace norvane
