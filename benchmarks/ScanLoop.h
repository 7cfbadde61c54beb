#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/linux/FileDescriptor.h"

namespace norvane {

// Reads what a run of ticks read, with descriptors that are kept, and looks at every byte once. A tick that
// takes the same texts apart is measured beside it.
class ScanLoop {
 public:
    // The files below `root` that each tick read, in order.
    ScanLoop(const std::string& root, const std::vector<std::vector<std::string>>& readsOfTicks);

    // One tick's files; after those of the last tick, the first one's again. Gives something that depends on
    // every byte.
    std::uint64_t readTick();

    // Of all ticks together.
    std::size_t reads() const;

 private:
    std::vector<FileDescriptor> files_;
    std::vector<std::vector<std::size_t>> ticks_;  // indices into `files_`
    std::size_t next_ = 0;
    std::vector<char> buffer_;
};

}  // namespace norvane
