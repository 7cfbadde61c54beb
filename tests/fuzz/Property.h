#pragma once

#include <sstream>
#include <string>
#include <string_view>

namespace norvane {

// Says which property is broken and ends the program, unless it holds.
void require(bool holds, const char* property);

// The text and lines that no kernel writes: before it, and after it on lines of their own. Any parser of
// lines must pass over them.
std::string amongUnknownLines(std::string_view text);
std::string beforeUnknownLines(std::string_view text);

template <typename... Parts>
std::string joined(const Parts&... parts) {
    std::ostringstream stream;
    (stream << ... << parts);
    return stream.str();
}

}  // namespace norvane
