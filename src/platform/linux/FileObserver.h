#pragma once

#include <string_view>

namespace norvane {

// Hears of every file that is asked for below a root folder, so that what a tick costs can be counted. Told
// on the thread that asks, which may be any.
class FileObserver {
 public:
    virtual ~FileObserver() = default;

    // Told before the attempt, whether or not it succeeds.
    virtual void willOpen(std::string_view path) = 0;
    // Once for each text read from its beginning, however many system calls that takes.
    virtual void willRead(std::string_view path) = 0;
};

}  // namespace norvane
