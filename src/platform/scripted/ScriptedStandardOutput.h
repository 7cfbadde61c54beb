#pragma once

#include <string>
#include <vector>

#include "platform/StandardOutput.h"

namespace norvane {

// Remembers what was printed.
class ScriptedStandardOutput final : public StandardOutput {
 public:
    void printLine(std::string_view line) override { lines.emplace_back(line); }

    std::vector<std::string> lines;
};

}  // namespace norvane
