#include <algorithm>

#include "platform/linux/EscapedText.h"
#include "Property.h"

namespace norvane {
namespace {

std::string withEveryByteEscaped(std::string_view text, std::string_view opening, int base, int digits) {
    std::string result;
    for (const char each : text) {
        result += opening;
        int divisor = 1;
        for (int digit = 1; digit < digits; ++digit)
            divisor *= base;
        for (int rest = static_cast<unsigned char>(each); divisor > 0; rest %= divisor, divisor /= base)
            result += "0123456789abcdef"[rest / divisor];
    }
    return result;
}

template <typename Decode>
void check(std::string_view text, Decode decode, std::string_view opening, int base, int digits) {
    const std::string decoded = decode(text);
    require(decoded.size() <= text.size(), "decoding makes no text longer");
    require(std::count(decoded.begin(), decoded.end(), '\0') == std::count(text.begin(), text.end(), '\0'),
            "decoding makes no NULs");
    if (text.find(opening) == std::string_view::npos) require(decoded == text, "plain text stays as it is");
    if (text.find('\0') != std::string_view::npos) return;
    require(decode(withEveryByteEscaped(text, opening, base, digits)) == text, "every byte can be escaped");
}

}  // namespace
}  // namespace norvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = norvane::textOf(data, size);
    norvane::check(text, norvane::decodedOctal, "\\", 8, 3);
    norvane::check(text, norvane::decodedHex, "\\x", 16, 2);
    return 0;
}
