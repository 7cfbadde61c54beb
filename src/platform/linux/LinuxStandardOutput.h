#pragma once

#include "platform/StandardOutput.h"

namespace norvane {

// The process' standard output. A pipe that nobody empties takes no more lines and holds up nobody.
class LinuxStandardOutput final : public StandardOutput {
 public:
    explicit LinuxStandardOutput(int descriptor = 1) : descriptor_(descriptor) {}

    void printLine(std::string_view line) override;

 private:
    int descriptor_;
};

}  // namespace norvane
