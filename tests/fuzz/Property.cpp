#include "Property.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace norvane {

namespace {

constexpr std::string_view kUnknownLines =
    "norvaneUnknown: 12 kB\n\nnorvaneNews 7 x 9\nnorvane avg10=1.00\n\n";

}  // namespace

void require(bool holds, const char* property) {
    if (holds) return;
    std::fprintf(stderr, "Broken: %s\n", property);
    std::abort();
}

std::string amongUnknownLines(std::string_view text) {
    return std::string(kUnknownLines) + beforeUnknownLines(text);
}

std::string beforeUnknownLines(std::string_view text) {
    return std::string(text) + '\n' + std::string(kUnknownLines);
}

std::string withBlanksEscaped(std::string_view path) {
    std::string result;
    for (const char byte : path) {
        const std::size_t which = std::string_view(" \t\n\\").find(byte);
        result += which < 4 ? std::array{"\\040", "\\011", "\\012", "\\134"}[which] : std::string(1, byte);
    }
    return result;
}

bool hasLine(std::string_view text, std::string_view beginning) {
    return text.starts_with(beginning) || text.find('\n' + std::string(beginning)) != std::string_view::npos;
}

std::size_t lineCount(std::string_view text) {
    const auto newlines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
    return newlines + (text.empty() || text.ends_with('\n') ? 0 : 1);
}

}  // namespace norvane

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    norvane::check({reinterpret_cast<const char*>(data), size});
    return 0;
}
