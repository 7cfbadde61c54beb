#include "platform/linux/DrmFdinfo.h"

#include "platform/linux/KernelText.h"

namespace norvane {

namespace {

// What follows the prefix; empty where the key begins otherwise, or ends there.
std::string_view after(std::string_view prefix, std::string_view key) {
    return key.starts_with(prefix) ? key.substr(prefix.size()) : std::string_view();
}

// The number of a value that consists of it and, perhaps, of its unit.
std::optional<std::uint64_t> amount(std::string_view value, std::string_view unit = {}) {
    const auto number = takeNumber(value);
    const std::string_view given = takeWord(value);
    if (!given.empty() && given != unit) return std::nullopt;
    return takeWord(value).empty() ? number : std::nullopt;
}

void keepFirst(std::optional<std::uint64_t>& kept, std::optional<std::uint64_t> number) {
    if (!kept) kept = number;
}

void parseEngineLine(std::string_view key, std::string_view value, DrmEngines& engines) {
    const auto engine = [&engines](std::string_view name) -> DrmEngine& {
        return engines[std::string(name)];
    };
    // The longer prefix first, since "capacity-…" is no engine's name.
    if (const auto counted = after("drm-engine-capacity-", key); !counted.empty()) {
        const auto capacity = amount(value);
        DrmEngine& alike = engine(counted);
        if (capacity && *capacity > 0 && alike.capacity == 1) alike.capacity = *capacity;
    } else if (const auto timed = after("drm-engine-", key); !timed.empty() && timed != "capacity-") {
        keepFirst(engine(timed).busyNanoseconds, amount(value, "ns"));
    } else if (const auto busy = after("drm-cycles-", key); !busy.empty()) {
        keepFirst(engine(busy).busyCycles, amount(value));
    } else if (const auto total = after("drm-total-cycles-", key); !total.empty()) {
        keepFirst(engine(total).totalCycles, amount(value));
    }
}

}  // namespace

std::optional<DrmFdinfo> parseDrmFdinfo(std::string_view text) {
    DrmFdinfo info;
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) continue;
        const std::string_view key = line.substr(0, colon);
        const std::string_view value = trimmed(line.substr(colon + 1));
        if (key == "drm-client-id") {
            if (info.clientId.empty()) info.clientId = value;
        } else if (key == "drm-pdev") {
            if (info.pdev.empty()) info.pdev = value;
        } else {
            parseEngineLine(key, value, info.engines);
        }
    }
    if (info.clientId.empty()) return std::nullopt;
    return info;
}

}  // namespace norvane
