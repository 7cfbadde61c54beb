#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace norvane {

// The texts by which an enumeration is stored and named outside of the program, in the order of its cases
// (which count up from 0). An enumeration that has them specialises this with an array of texts.
template <typename Enumeration>
inline constexpr int kRawTexts = 0;

template <typename Enumeration>
constexpr std::string_view rawTextOf(Enumeration value) {
    return kRawTexts<Enumeration>[static_cast<std::size_t>(value)];
}

// No value for a text that names no case.
template <typename Enumeration>
constexpr std::optional<Enumeration> fromRawText(std::string_view text) {
    for (std::size_t i = 0; i < kRawTexts<Enumeration>.size(); ++i) {
        if (kRawTexts<Enumeration>[i] == text) return static_cast<Enumeration>(i);
    }
    return std::nullopt;
}

}  // namespace norvane
