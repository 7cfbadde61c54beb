#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/DrmEngine.h"
#include "platform/linux/RootFolder.h"
#include "platform/MonotonicInstant.h"

namespace norvane {

// The clients of graphics devices among this user's processes, which on a desktop are nearly all that there
// are; those of others cannot be seen. Looking at every process takes milliseconds, so this belongs on a
// lane.
class DrmClients {
 public:
    // The names of devices, by those of their nodes below /dev/dri.
    using Nodes = std::map<std::string, std::string>;

    struct Answer {
        // When the counters were read.
        MonotonicInstant at;
        // By the device's name; devices without a client are missing.
        std::map<std::string, DrmClientEngines> clients;
    };

    // Between these looks at every process, only those are looked at that had a graphics device open.
    static constexpr std::chrono::seconds kLookAtAll{30};
    // More descriptors of one process are not looked at: it has better things to do than to draw.
    static constexpr std::size_t kMostDescriptors = 4096;

    DrmClients(RootFolder root, std::uint32_t userId, std::function<MonotonicInstant()> now);

    // Nothing is opened that belongs to other nodes, since their device may be asleep.
    Answer read(const Nodes& nodes);

 private:
    struct Descriptor {
        std::string fdinfo;
        std::string device;
    };

    std::vector<Descriptor> findDescriptors(const Nodes& nodes);
    // Whether the process has any graphics device open, one of `nodes` or not.
    bool findDescriptorsOf(const std::string& process, const Nodes& nodes,
                           std::vector<Descriptor>& found) const;

    RootFolder root_;
    std::uint32_t userId_;
    std::function<MonotonicInstant()> now_;
    std::optional<MonotonicInstant> lookedAtAll_;
    std::vector<std::string> processes_;  // that had a graphics device open at the last look at all
};

}  // namespace norvane
