#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/WallInstant.h"
#include "scenario/Json.h"
#include "telemetry/ComponentState.h"
#include "telemetry/DiskSnapshot.h"
#include "telemetry/ImpactState.h"
#include "telemetry/ThermalLevel.h"

// Values as a transcript shows them: the same text on every machine and with every compiler.
namespace norvane {

// Rounded to four places; "nan", "inf" and "-inf" as texts.
Json shownJson(double value);
Json shownJson(bool value);
Json shownJson(std::int64_t value);
Json shownJson(const std::string& value);
Json shownJson(ComponentState value);
Json shownJson(ImpactState value);
Json shownJson(ThermalLevel value);
// "2026-01-01T00:00:00.000Z"
Json shownJson(WallInstant value);
// Without its identity, which is another one at every reading.
Json shownJson(const DiskSnapshot& value);

template <typename Value>
Json shownJson(const std::optional<Value>& value) {
    return value ? shownJson(*value) : Json();
}

template <typename Value>
Json shownJson(const std::vector<Value>& values) {
    Json list = Json::array();
    for (const Value& value : values)
        list.push_back(shownJson(value));
    return list;
}

}  // namespace norvane
