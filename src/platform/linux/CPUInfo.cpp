#include "platform/linux/CPUInfo.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <system_error>
#include <utility>

#include "platform/linux/KernelText.h"

namespace norvane {

namespace {

// More designs than any chip combines; a made-up file could name millions.
constexpr std::size_t kMostParts = 16;

constexpr std::array kInfoKeys{
    std::pair{std::string_view("model name"), &CPUInfo::modelName},
    std::pair{std::string_view("Model Name"), &CPUInfo::modelName},
    std::pair{std::string_view("cpu model"), &CPUInfo::cpuModel},
    std::pair{std::string_view("cpu"), &CPUInfo::cpu},
    std::pair{std::string_view("uarch"), &CPUInfo::uarch},
    std::pair{std::string_view("Hardware"), &CPUInfo::hardware},
};

std::optional<std::uint32_t> parseHexadecimal(std::string_view text) {
    if (text.substr(0, 2) != "0x") return std::nullopt;
    std::uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data() + 2, end, number, 16);
    if (error != std::errc{} || stop != end) return std::nullopt;
    return number;
}

}  // namespace

CPUInfo parseCPUInfo(std::string_view text) {
    CPUInfo info;
    std::optional<std::uint32_t> implementer;
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) continue;
        const std::string_view key = trimmed(line.substr(0, colon));
        const std::string_view value = trimmed(line.substr(colon + 1));
        if (key == "CPU implementer") {
            implementer = parseHexadecimal(value);
        } else if (key == "CPU part") {
            const auto part = parseHexadecimal(value);
            if (!implementer || !part || info.armParts.size() == kMostParts) continue;
            const ArmPart design{*implementer, *part};
            const auto seen = std::find(info.armParts.begin(), info.armParts.end(), design);
            if (seen == info.armParts.end()) info.armParts.push_back(design);
        } else {
            for (const auto& [name, member] : kInfoKeys) {
                if (key == name && (info.*member).empty()) info.*member = collapsed(value);
            }
        }
    }
    return info;
}

}  // namespace norvane
