#include "platform/linux/EscapedText.h"

#include <charconv>
#include <cstdint>
#include <system_error>

namespace norvane {

namespace {

// Replaces each `opening` that `digits` digits of `base` follow.
std::string decoded(std::string_view text, std::string_view opening, std::size_t digits, int base) {
    if (text.find(opening) == std::string_view::npos) return std::string(text);
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t at = text.find(opening);
        result += text.substr(0, at);
        if (at == std::string_view::npos) break;
        text.remove_prefix(at);
        const std::string_view number = text.substr(opening.size(), digits);
        const char* const end = number.data() + number.size();
        std::uint8_t byte = 0;
        const auto [stop, error] = std::from_chars(number.data(), end, byte, base);
        if (number.size() == digits && stop == end && error == std::errc{} && byte != 0) {
            result += static_cast<char>(byte);
            text.remove_prefix(opening.size() + digits);
        } else {
            result += text.front();
            text.remove_prefix(1);
        }
    }
    return result;
}

}  // namespace

std::string decodedOctal(std::string_view text) {
    return decoded(text, "\\", 3, 8);
}

std::string decodedHex(std::string_view text) {
    return decoded(text, "\\x", 2, 16);
}

}  // namespace norvane
