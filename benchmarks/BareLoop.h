#pragma once

#include <cstddef>
#include <vector>

#include "platform/linux/FileDescriptor.h"

namespace norvane {

// The least that a tick could do: reads its files to the end, with descriptors that are kept, and looks at
// nothing of what they say. A tick is measured beside it, since what a read costs is the kernel's to decide.
class BareLoop {
 public:
    enum class Half { light, full };

    // The list is fixed here: the files of this machine as it is now. Swapping to a zram device that begins
    // later is not noticed.
    explicit BareLoop(Half half);

    void read();

    std::size_t fileCount() const { return files_.size(); }

 private:
    void add(const char* path);

    std::vector<FileDescriptor> files_;
    std::vector<char> buffer_;
};

}  // namespace norvane
