#pragma once

#include <map>
#include <optional>
#include <vector>

#include "platform/Registry.h"
#include "platform/scripted/ScriptedAnswer.h"

namespace norvane {

// A machine with no devices to tell of, until told otherwise.
class ScriptedRegistry final : public Registry {
 public:
    using Services = std::optional<std::vector<RegistryEntry>>;

    Services IOServiceGetMatchingServices(RegistryService kind, TickToken tick) override {
        lastTick = tick;
        return services(kind).ask();
    }

    // The services of a kind; a kind that was never scripted has none.
    ScriptedAnswer<Services>& services(RegistryService kind) {
        return services_.try_emplace(kind, Services(std::in_place)).first->second;
    }
    // What the last question came with.
    TickToken lastTick;

 private:
    std::map<RegistryService, ScriptedAnswer<Services>> services_;
};

}  // namespace norvane
