#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/linux/KernelText.h"
#include "platform/linux/RootFolder.h"

namespace norvane {

// What a file of one short text says, without blanks around it; empty where it is missing or unreadable.
inline std::string textOf(const RootFolder& root, const std::string& path) {
    const auto text = root.read(path);
    return text ? std::string(trimmed(*text)) : std::string();
}

// Likewise of a file that holds one number; none where it holds anything else.
inline std::optional<std::int64_t> numberOf(const RootFolder& root, const std::string& path) {
    const auto text = root.read(path);
    return text ? parseSignedNumber(*text) : std::nullopt;
}

}  // namespace norvane
