#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/FileDescriptor.h"

namespace norvane {

class FileObserver;

// Where the machine's files are: paths begin with "/" and are looked up below the prefix, which is empty for
// the machine that we run on. Links are followed inside the prefix only, so a captured machine may carry its
// own links, absolute ones too, and none leads out of it.
//
// Copies share one state and may be used from any thread at the same time. Nothing throws for a file that is
// missing or cannot be read. "/proc" and "/sys" do not wait for anything but the driver behind a file.
class RootFolder {
 public:
    // Who follows the links below a prefix: the kernel (openat2, and we where it lacks the call), or always
    // we. There is nothing to choose for an empty prefix.
    enum class Links { kernelFollows, weFollow };

    explicit RootFolder(std::string prefix, std::shared_ptr<FileObserver> observer = nullptr,
                        Links links = Links::kernelFollows);

    // For reading. Without a descriptor, `errno` says why.
    FileDescriptor open(const char* path) const;

    // The whole text of a file that is read once; none where it is missing, unreadable or above `limit`
    // bytes.
    std::optional<std::string> read(const std::string& path, std::size_t limit = 65536) const;

    // The names in a folder, without "." and "..", sorted; empty where it is missing.
    std::vector<std::string> names(const std::string& path) const;

    // What the link at `path` says, unresolved; none where there is no link.
    std::optional<std::string> readLink(const std::string& path) const;

    // The user that the file belongs to; of a link, that of the link itself. None where it is missing.
    std::optional<std::uint32_t> owner(const std::string& path) const;

    // Reads an open file from its beginning into `buffer`, which grows as needed, up to `limit`. Gives the
    // number of bytes; without one `errno` says why (EFBIG above the limit).
    std::optional<std::size_t> readAll(const FileDescriptor& file, std::string_view path,
                                       std::vector<char>& buffer, std::size_t limit) const;

 private:
    struct State;
    template <typename Buffer>
    std::optional<std::size_t> readInto(Buffer& buffer, const FileDescriptor& file, std::string_view path,
                                        std::size_t limit) const;
    FileDescriptor openAs(const char* path, int flags) const;

    std::shared_ptr<const State> state_;
};

}  // namespace norvane
