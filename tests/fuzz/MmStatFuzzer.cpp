#include "platform/linux/MmStat.h"
#include "Property.h"

namespace norvane {

void check(std::string_view text) {
    const auto bytes = parseMmStat(text);
    require(parseMmStat(beforeUnknownLines(text)) == bytes, "only the first line counts");
    if (!bytes) return;
    const std::string line(text.substr(0, text.find('\n')));
    require(parseMmStat(line + " 7 8 9\n") == bytes, "columns of newer kernels don't matter");
    require(parseMmStat("1 2 " + std::to_string(*bytes)) == bytes, "the value survives printing");
}

}  // namespace norvane
