#pragma once

#include <string>

namespace norvane {

// An empty folder for the preferences and sockets of the programs that are measured. It goes away with this,
// and everything in it.
class ScratchFolder {
 public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    // Empty where none could be made.
    const std::string& path() const { return path_; }

 private:
    std::string path_;
};

}  // namespace norvane
