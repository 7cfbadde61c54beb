#pragma once

#include <string_view>

namespace norvane {

// Where the few failures go that are told at all. Any thread; the calls return at once and never throw. A
// line that nobody takes is lost.
class StandardOutput {
 public:
    virtual ~StandardOutput() = default;

    // `line` has no line feed; one is added.
    virtual void printLine(std::string_view line) = 0;
};

}  // namespace norvane
