#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/linux/RootFolder.h"

namespace norvane {

// A machine's files for one test, written piece by piece; gone when the test ends. Paths begin with "/".
class TemporaryFolder {
 public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return path_; }
    RootFolder root(std::shared_ptr<FileObserver> observer = nullptr) const {
        return RootFolder(path_, std::move(observer));
    }

    // Makes the folders above, too. A file that is there keeps its identity, so that who has it open sees the
    // new text, as with files of the kernel.
    void write(const std::string& file, std::string_view text) const;
    // What is in a file, wherever links lead; empty where it cannot be read.
    std::string text(const std::string& file) const;
    void link(const std::string& file, const std::string& target) const;
    void makeFolder(const std::string& folder) const;
    // A file, or a folder with all that is in it.
    void remove(const std::string& file) const;
    // All of another machine's files, links as links.
    void copyFrom(const std::string& folder) const;

 private:
    std::string path_;
};

}  // namespace norvane
