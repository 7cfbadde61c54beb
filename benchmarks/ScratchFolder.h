#pragma once

#include <string>

namespace norvane {

// An empty folder for what is measured: preferences and sockets of programs, files of machines. It goes away
// with this, and everything in it.
class ScratchFolder {
 public:
    // Below `parent`, or where temporary files belong if that is empty.
    explicit ScratchFolder(const std::string& parent = {});
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    // Empty where none could be made.
    const std::string& path() const { return path_; }

 private:
    std::string path_;
};

}  // namespace norvane
