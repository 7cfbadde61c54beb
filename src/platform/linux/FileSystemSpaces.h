#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "platform/linux/FileSystemSpace.h"
#include "platform/linux/LaneWaiter.h"
#include "platform/linux/Mount.h"
#include "platform/linux/SystemCalls.h"

namespace norvane {

// How large the file systems are that a server or another program answers for. Such a call may never return
// and cannot be taken back, and each that is stuck keeps the machine from going to sleep. So they are made on
// a few threads of their own, never a second one for a mount whose first is still out, and whoever asks gets
// an answer from earlier instead.
//
// Any thread, one at a time; that may be another one each time. Threads that are stuck outlive this.
class FileSystemSpaces {
 public:
    // For all servers together.
    static constexpr std::chrono::milliseconds kWait{250};
    // Of all scans together.
    static constexpr std::size_t kMostThreads = 4;
    // An answer from earlier serves for this long.
    static constexpr std::chrono::minutes kOldest{10};
    // For so long, a server that answered too late is left alone.
    static constexpr std::chrono::seconds kPause{60};

    struct Answer {
        // None where the call failed.
        std::optional<FileSystemSpace> space;
        MonotonicInstant at;
    };

    FileSystemSpaces(SystemCalls calls, std::shared_ptr<LaneWaiter> waiter);
    ~FileSystemSpaces();

    // For each of `asked`, of which `table` holds at least all: the answer, from earlier where there is none
    // in time; none without a recent one. What is not in `table` is forgotten.
    std::vector<std::optional<Answer>> ask(const std::vector<const Mount*>& asked,
                                           const std::vector<Mount>& table);

 private:
    struct Server;
    struct Shared;

    std::shared_ptr<Server> serverOf(const Mount& mount);
    void forgetAllBut(const std::vector<Mount>& table);
    static bool startThread(const std::shared_ptr<Shared>& shared);

    std::shared_ptr<Shared> shared_;                                      // with the threads
    std::unordered_map<std::uint64_t, std::shared_ptr<Server>> servers_;  // by the mount's id
};

}  // namespace norvane
