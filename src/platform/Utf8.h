#pragma once

#include <string>
#include <string_view>

namespace norvane {

struct Utf8Character {
    char32_t value = U'\uFFFD';
    // Well-formed: of the text, or U+FFFD's own.
    std::string_view bytes = "\xEF\xBF\xBD";
};

// The character that a text begins with, which is taken off it. A byte that is not part of well-formed UTF-8
// (RFC 3629) makes U+FFFD: one for each longest piece that could have begun a character. The text is not
// empty.
Utf8Character takeUtf8Character(std::string_view& text);

// The text with every byte that is not part of well-formed UTF-8 replaced in that way.
std::string repairedUtf8(std::string_view bytes);

}  // namespace norvane
