#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/VolumeEjection.h"

namespace norvane {

// The ejections under way, side by side, at most one of each volume. Main thread only.
class VolumeEjections {
 public:
    using Completion = std::function<void(std::optional<std::string> error)>;

    // The bus is the system's; it and the queues outlive this.
    VolumeEjections(BusConnection& systemBus, MainQueue& mainQueue, BackgroundQueue& backgroundQueue,
                    RootFolder root);

    void begin(const std::string& path, Completion completion);

 private:
    struct UnderWay {
        std::vector<Completion> completions;
        std::unique_ptr<VolumeEjection> ejection;
    };

    void end(const std::string& path, const std::optional<std::string>& error);

    BusConnection& bus_;
    MainQueue& mainQueue_;
    BackgroundQueue& backgroundQueue_;
    const RootFolder root_;
    std::map<std::string, UnderWay> underWay_;
};

}  // namespace norvane
