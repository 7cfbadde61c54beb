#pragma once

#include <string>

#include "ScratchFolder.h"

namespace norvane {

// A server of any size, as files in memory.
class MadeServer {
 public:
    // Throws std::runtime_error where it cannot be made.
    MadeServer(int processors, int disks, int mounts);

    const std::string& path() const { return folder_.path(); }

 private:
    ScratchFolder folder_{"/dev/shm"};
};

}  // namespace norvane
