#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/AutostartSurroundings.h"

namespace norvane {

// The desktop entries named `norvane.desktop` that a session looks for at login. Every call may wait for the
// disk; any thread, one at a time.
class AutostartFiles {
 public:
    // Beyond it a file is no entry.
    static constexpr std::size_t kLargestBytes = 1024 * 1024;

    // `program` is what is to be started, a path from the root.
    AutostartFiles(AutostartSurroundings surroundings, std::string program);

    // Whether the session would start what the first file of that name says.
    bool isStarted() const;

    // Either gives a description of the error, valid UTF-8, and leaves the file as it was; none where it is
    // done. A reader, and whoever looks after a crash, finds the old file or the new one.
    //
    // A fresh file of the user's, whatever was there: each desktop has its own way of switching one off. It
    // is a file of its own, also where a link was.
    std::optional<std::string> switchOn() const;
    // No file of the user's; where there is one for all users, one that hides it.
    std::optional<std::string> switchOff() const;

 private:
    std::string userFolder() const;
    bool isProgram(const std::string& program) const;
    std::optional<std::string> replace(const std::string& text) const;

    const AutostartSurroundings surroundings_;
    const std::string program_;
};

}  // namespace norvane
