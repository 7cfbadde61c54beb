#pragma once

#include <cstdint>
#include <string_view>

namespace norvane {

// The least that taking a text apart asks for: looks at one byte after another and tells blanks from words.
// Gives the number of words.
inline std::uint64_t scanEveryByte(std::string_view text) {
    std::uint64_t words = 0;
    bool isInWord = false;
    for (const char byte : text) {
        const bool isBlank = byte == ' ' || byte == '\n' || byte == '\t';
        if (!isBlank && !isInWord) ++words;
        isInWord = !isBlank;
    }
    return words;
}

}  // namespace norvane
