#include "Property.h"

#include <cstdio>
#include <cstdlib>

namespace norvane {
namespace {

constexpr const char* kUnknownLines = "norvaneUnknown: 12 kB\n\nnorvaneNews 7 x 9\nnorvane avg10=1.00\n\n";

}  // namespace

void require(bool holds, const char* property) {
    if (holds) return;
    std::fprintf(stderr, "Broken: %s\n", property);
    std::abort();
}

std::string amongUnknownLines(std::string_view text) {
    return kUnknownLines + beforeUnknownLines(text);
}

std::string beforeUnknownLines(std::string_view text) {
    return joined(text, '\n', kUnknownLines);
}

}  // namespace norvane
