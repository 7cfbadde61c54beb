#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <tuple>

#include "platform/BackgroundQueue.h"
#include "platform/linux/RootFolder.h"
#include "platform/MainQueue.h"
#include "platform/Observers.h"

namespace norvane {

// Tells of volumes that were mounted and unmounted, while somebody listens. The kernel says that its table of
// mounts has changed; which volumes came and went, a comparison of tables says, which waits for a moment of
// quiet first: whoever makes many mounts makes them at once. Main thread only.
class MountWatch {
 public:
    // The queues outlive this.
    MountWatch(MainQueue& mainQueue, BackgroundQueue& backgroundQueue, RootFolder root);
    ~MountWatch();
    MountWatch(const MountWatch&) = delete;
    MountWatch& operator=(const MountWatch&) = delete;

    // What happens from the moment of the call on is told of.
    [[nodiscard]] Cancellation onDidMount(std::function<void()> observer);
    [[nodiscard]] Cancellation onDidUnmount(std::function<void()> observer);

    // From a change to the look at the table, where the last one took so long.
    static std::chrono::nanoseconds quietAfter(std::chrono::nanoseconds look);

 private:
    // A mount's number is used again after it has gone.
    using Volume = std::tuple<std::uint64_t, std::string, std::string>;
    struct Look {
        // None where there was no table to be read.
        std::optional<std::set<Volume>> volumes;
        std::chrono::nanoseconds took{0};
        // There was a change between the beginning of the watch and the end of the look, which may be among
        // the volumes or may have gone again.
        bool isLate = false;
    };
    class Watching;

    Cancellation listen(Observers<>& observers, std::function<void()> observer);
    void tell(bool hasMounted, bool hasUnmounted);

    MainQueue& mainQueue_;
    BackgroundQueue& backgroundQueue_;
    const RootFolder root_;
    Observers<> mounted_;
    Observers<> unmounted_;
    std::unique_ptr<Watching> watching_;
    const std::shared_ptr<MountWatch*> alive_ = std::make_shared<MountWatch*>(this);
};

}  // namespace norvane
