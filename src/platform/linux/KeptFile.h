#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/RootFolder.h"

namespace norvane {

// A kernel file that is read again and again. The descriptor and the buffer are kept: reading at offset 0 has
// the kernel write the text anew, at half the price of opening the file each time. Not for two threads at
// once.
class KeptFile {
 public:
    // A text above `limit` bytes counts as unreadable. A file that was missing is looked for again at the
    // next call, or only after `missesBetweenLooks` further calls: for files that most machines never have.
    KeptFile(RootFolder root, std::string path, std::size_t limit = 65536, unsigned missesBetweenLooks = 0);

    // The whole text as of now, valid until the next call or move; none where it is missing or cannot be read
    // this time. After the first call it allocates only when the text outgrows every earlier one.
    std::optional<std::string_view> read();

    // Whether the last call found the file, readable or not. A driver that goes away takes its file with it.
    bool exists() const { return static_cast<bool>(file_); }

    const std::string& path() const { return path_; }

 private:
    RootFolder root_;
    std::string path_;
    std::size_t limit_;
    unsigned missesBetweenLooks_;
    unsigned missesLeft_ = 0;
    FileDescriptor file_;
    std::vector<char> buffer_;
};

}  // namespace norvane
