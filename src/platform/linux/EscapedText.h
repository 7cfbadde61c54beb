#pragma once

#include <string>
#include <string_view>

namespace norvane {

// Undo how text with blanks in it is written where blanks separate. What is no complete escape stays as it
// is, and so does one that stands for a NUL, which no path and no name can have.

// "\040" is a blank: a backslash and exactly three octal digits, as in the kernel's tables of mounts.
std::string decodedOctal(std::string_view text);
// "\x20" is a blank: as the device manager writes labels.
std::string decodedHex(std::string_view text);

}  // namespace norvane
