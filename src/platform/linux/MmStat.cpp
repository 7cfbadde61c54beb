#include "platform/linux/MmStat.h"

#include "platform/linux/KernelText.h"

namespace norvane {

std::optional<std::uint64_t> parseMmStat(std::string_view text) {
    // orig_data_size compr_data_size mem_used_total …
    std::string_view line = takeLine(text);
    if (!takeNumber(line) || !takeNumber(line)) return std::nullopt;
    return takeNumber(line);
}

}  // namespace norvane
