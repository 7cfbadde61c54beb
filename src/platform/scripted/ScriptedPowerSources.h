#pragma once

#include <optional>
#include <vector>

#include "platform/PowerSources.h"
#include "platform/scripted/ScriptedAnswer.h"

namespace norvane {

// A machine without power sources, until told otherwise.
class ScriptedPowerSources final : public PowerSources {
 public:
    using Sources = std::optional<std::vector<PowerSourceDescription>>;

    Sources IOPSCopyPowerSourcesInfo(TickToken) override { return sources.ask(); }

    ScriptedAnswer<Sources> sources{Sources(std::in_place)};
};

}  // namespace norvane
