#pragma once

#include <mutex>

#include "platform/linux/FileDescriptor.h"
#include "platform/StandardOutput.h"

namespace norvane {

// The process' standard output. A pipe or a terminal that nobody empties takes no more lines and holds up
// nobody. What goes to a reader that has gone is lost, too.
class LinuxStandardOutput final : public StandardOutput {
 public:
    explicit LinuxStandardOutput(int descriptor = 1);

    void printLine(std::string_view line) override;

 private:
    int descriptor_;
    // Another way to the same pipe or terminal, which never waits. Making the descriptor itself so would make
    // it so for every program that shares it.
    FileDescriptor own_;
    // Between seeing that there is room and using it.
    std::mutex mutex_;
};

}  // namespace norvane
