#pragma once

#include <string>
#include <vector>

#include "platform/linux/DefaultsFile.h"

namespace norvane {

// The defaults file on the disk. Calls may wait for the disk; one thread at a time. Any number of processes
// may have the same file: each puts its own changes into what the others left.
class DefaultsStorage {
 public:
    // Beyond it a file is unusable.
    static constexpr std::size_t kLargestBytes = 1024 * 1024;

    enum class State {
        missing,
        readable,
        // Something stands there that is no readable defaults file: a folder, a huge file, a forbidden one.
        // It counts as empty, and is moved aside by the first write.
        unusable,
        // It cannot be told just now what stands there.
        unknown,
    };
    struct Reading {
        State state = State::missing;
        std::string text;  // empty unless readable
    };

    // Any path, also an empty one: nothing is there then, and nothing can be written.
    explicit DefaultsStorage(std::string path) : path_(std::move(path)) {}

    Reading read() const;

    // Reads the file again, puts the changes into its text and replaces it as a whole, so that a reader, and
    // whoever looks after a crash, finds the old text or the new one. Gives the text that the file has now;
    // none where it could not be written, and is as it was.
    std::optional<std::string> apply(const DefaultsChanges& changes);

    // The path, and where it is a link what that leads to, and so on. The last one is no link; it is what is
    // replaced. Just the path where the links go round in circles.
    std::vector<std::string> pathAndLinkTargets() const;

 private:
    std::string path_;
};

}  // namespace norvane
