#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace norvane {

// What the fuzz targets share. A target is given bytes, hands them to a parser, and checks what must hold for
// any bytes at all; crashes, overruns and leaks are found by the sanitizers.

// Says which property is broken and ends the program, unless it holds.
void require(bool holds, const char* property);

// The target's own. Nothing follows the bytes, so that reading beyond them is noticed.
void check(std::string_view text);

// The text and lines that no kernel writes: before it, and after it on lines of their own. Any parser of
// lines must pass over them.
std::string amongUnknownLines(std::string_view text);
std::string beforeUnknownLines(std::string_view text);

// As tables of mounts have paths: blanks, newlines and backslashes in octal digits.
std::string withBlanksEscaped(std::string_view path);

// Whether a line begins so.
bool hasLine(std::string_view text, std::string_view beginning);

// The number of lines, a last one without its newline included.
std::size_t lineCount(std::string_view text);

}  // namespace norvane
