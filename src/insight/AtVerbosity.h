#pragma once

#include <string_view>

#include "preferences/InsightVerbosity.h"

namespace norvane {

// The text as far as the user wants it: all of it, or its headline alone, which is the first line that is not
// empty.
constexpr std::string_view atVerbosity(InsightVerbosity verbosity, std::string_view text) {
    if (verbosity == InsightVerbosity::detailed) return text;
    const auto begin = text.find_first_not_of('\n');
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find('\n', begin) - begin);
}

}  // namespace norvane
