#pragma once

#include <string>
#include <string_view>

namespace norvane {

// The text with every byte that is not part of well-formed UTF-8 (RFC 3629) replaced by U+FFFD: one for each
// longest piece that could have begun a character.
std::string repairedUtf8(std::string_view bytes);

}  // namespace norvane
