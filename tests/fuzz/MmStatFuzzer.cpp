#include "platform/linux/MmStat.h"
#include "Property.h"

namespace norvane {
namespace {

void check(std::string_view text) {
    const auto bytes = parseMmStat(text);
    require(parseMmStat(beforeUnknownLines(text)) == bytes, "only the first line counts");
    if (!bytes) return;
    const std::string line(text.substr(0, text.find('\n')));
    require(parseMmStat(line + " 7 8 9\n") == bytes, "columns of newer kernels don't matter");
    require(parseMmStat("1 2 " + std::to_string(*bytes)) == bytes, "the value survives printing");
}

}  // namespace
}  // namespace norvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    norvane::check(norvane::textOf(data, size));
    return 0;
}
