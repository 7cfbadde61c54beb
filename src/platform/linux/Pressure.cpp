#include "platform/linux/Pressure.h"

#include "platform/linux/KernelText.h"

namespace norvane {

namespace {

std::optional<std::uint64_t> avg10(std::string_view line) {
    constexpr std::string_view kKey = "avg10=";
    for (;;) {
        const std::string_view word = takeWord(line);
        if (word.empty()) return std::nullopt;
        if (word.substr(0, kKey.size()) == kKey) return parseHundredths(word.substr(kKey.size()));
    }
}

}  // namespace

std::optional<Pressure> parsePressure(std::string_view text) {
    std::optional<std::uint64_t> some;
    std::optional<std::uint64_t> full;
    while (!text.empty()) {
        std::string_view line = takeLine(text);
        const std::string_view kind = takeWord(line);
        if (kind == "some") {
            some = avg10(line);
        } else if (kind == "full") {
            full = avg10(line);
        }
    }
    if (!some) return std::nullopt;
    return Pressure{*some, full.value_or(0)};
}

}  // namespace norvane
