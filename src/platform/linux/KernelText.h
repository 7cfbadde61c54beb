#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace norvane {

// Takes apart what the kernel writes under /proc and /sys. Any bytes may be given. A number counts only where
// blanks or the end follow it and it fits; blanks are spaces and tabs.

// Removes the first line, with its newline, and gives it without.
std::string_view takeLine(std::string_view& text);
// Removes blanks and the word that follows them; empty at the end.
std::string_view takeWord(std::string_view& line);
// As `takeWord`, if the word is an unsigned decimal number; otherwise nothing is removed.
std::optional<std::uint64_t> takeNumber(std::string_view& line);

// Without blanks, newlines and NULs at either end.
std::string_view trimmed(std::string_view text);
// The same of other characters.
std::string_view trimmed(std::string_view text, std::string_view ends);
// Blanks at the ends gone, those inside reduced to one space; newlines and other control bytes are blanks.
std::string collapsed(std::string_view text);

// The one number that a text consists of, apart from blanks and newlines around it.
std::optional<std::uint64_t> parseNumber(std::string_view text);
std::optional<std::int64_t> parseSignedNumber(std::string_view text);
// A decimal number of 0 or more, in hundredths; further digits are cut off: "12.349" is 1234.
std::optional<std::uint64_t> parseHundredths(std::string_view word);
// The number in a name such as "cpu12" after its prefix; at most `largest`.
std::optional<unsigned> numberAfter(std::string_view prefix, std::string_view name, unsigned largest = 65535);

}  // namespace norvane
