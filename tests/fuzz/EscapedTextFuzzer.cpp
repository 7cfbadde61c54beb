#include <algorithm>

#include "platform/linux/EscapedText.h"
#include "Property.h"

namespace norvane {
namespace {

std::string withEveryByteEscaped(std::string_view text, std::string_view opening, int base, int most) {
    std::string result;
    for (const char each : text) {
        result += opening;
        int rest = static_cast<unsigned char>(each);
        for (int divisor = most; divisor > 0; rest %= divisor, divisor /= base)
            result += "0123456789abcdef"[rest / divisor];
    }
    return result;
}

template <typename Decode>
void checkDecoding(std::string_view text, Decode decode, std::string_view opening, int base, int most) {
    const std::string decoded = decode(text);
    require(decoded.size() <= text.size(), "decoding makes no text longer");
    require(std::count(decoded.begin(), decoded.end(), '\0') == std::count(text.begin(), text.end(), '\0'),
            "decoding makes no NULs");
    if (text.find(opening) == std::string_view::npos) require(decoded == text, "plain text stays as it is");
    if (text.find('\0') != std::string_view::npos) return;
    require(decode(withEveryByteEscaped(text, opening, base, most)) == text, "every byte can be escaped");
}

}  // namespace

void check(std::string_view text) {
    checkDecoding(text, decodedOctal, "\\", 8, 64);
    checkDecoding(text, decodedHex, "\\x", 16, 16);
}

}  // namespace norvane
