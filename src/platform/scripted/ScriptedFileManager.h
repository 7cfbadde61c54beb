#pragma once

#include <optional>
#include <vector>

#include "platform/FileManager.h"
#include "platform/scripted/ScriptedAnswer.h"

namespace norvane {

// A machine without volumes, until told otherwise.
class ScriptedFileManager final : public FileManager {
 public:
    using Volumes = std::optional<std::vector<VolumeURL>>;

    Volumes mountedVolumeURLs(TickToken) override { return volumes.ask(); }
    Volumes mountedVolumeURLs() override { return removable.ask(); }

    // To a tick.
    ScriptedAnswer<Volumes> volumes{Volumes(std::in_place)};
    // To whoever wants them as they are now.
    ScriptedAnswer<Volumes> removable{Volumes(std::in_place)};
};

}  // namespace norvane
