#pragma once

#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/linux/FileDescriptor.h"

namespace norvane {

// Notices that files came, went or were written, by watching the directories they are in: a watch on a file
// itself ends with the first program that replaces the file rather than writing into it. Where a directory is
// missing, its coming is noticed. One thread at a time; never blocks.
class DirectoryWatch {
 public:
    DirectoryWatch();

    // Readable when there may be something; -1 where nothing can be watched.
    int descriptor() const { return descriptor_.get(); }

    // Watches for these files and no others. To be called again after each change: directories may have come
    // or gone with it.
    void follow(const std::vector<std::string>& paths);

    // Takes what has been noticed since the last call, and says whether it concerned the files.
    bool takeChange();

 private:
    FileDescriptor descriptor_;                   // of inotify
    std::map<int, std::set<std::string>> names_;  // what to look for, by watch
};

}  // namespace norvane
