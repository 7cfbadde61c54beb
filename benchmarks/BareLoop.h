#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/linux/FileDescriptor.h"

namespace norvane {

// The least that a tick could do: reads its files to the end, with descriptors that are kept, and looks at
// nothing of what they say. A tick is measured beside it, since what a read costs is the kernel's to decide.
class BareLoop {
 public:
    enum class Half { light, full };

    // The list is fixed here: the files of this machine as it is now. Swapping to a zram device that begins
    // later is not noticed, and what the slow sources read on lanes of their own is not in it.
    explicit BareLoop(Half half);

    // One tick's files: those that a tick reads seldom are read as seldom.
    void read();

    std::size_t fileCount() const { return files_.size(); }

 private:
    struct File {
        FileDescriptor descriptor;
        // Read by every tick, every third, every thirtieth.
        std::uint64_t everyNth;
    };

    void add(const char* path, std::uint64_t everyNth = 1);

    std::vector<File> files_;
    std::uint64_t count_ = 0;
    std::vector<char> buffer_;
};

}  // namespace norvane
