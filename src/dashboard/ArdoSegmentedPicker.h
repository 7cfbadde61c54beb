#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "dashboard/SegmentRow.h"

namespace norvane {

// A choice of one value out of a few, as a row of segments.
//
//     ArdoSegmentedPicker<TemperatureUnit>{
//         .name = "Temperature unit",
//         .selection = preferences.temperatureUnit(),
//         .options = {{"°C", TemperatureUnit::celsius}, {"°F", TemperatureUnit::fahrenheit}},
//         .activeTint = VoltGreen::settings,
//         .itemWidth = 30,
//         .select = [this](TemperatureUnit unit) {
//             hosted_.change([&] { preferences_.setTemperatureUnit(unit); });
//         }}.body()
template <typename Value>
struct ArdoSegmentedPicker {
    // What is being chosen, for those who do not see it.
    std::string name = {};
    Value selection{};
    // The segments in their order.
    std::vector<std::pair<std::string, Value>> options = {};
    Paint activeTint = Ink::green;
    // Of each segment, in points.
    double itemWidth = 60;
    // Called inside the pill's spring: whatever it changes moves along.
    std::function<void(const Value& value)> select = {};

    Element body() const {
        SegmentRow row{.name = name, .activeTint = activeTint, .itemWidth = itemWidth};
        std::vector<Value> values;
        for (const auto& [label, value] : options) {
            if (value == selection && !row.chosen) row.chosen = row.labels.size();
            row.labels.push_back(label);
            values.push_back(value);
        }
        row.choose = [values = std::move(values), select = select](std::size_t index) {
            if (select) select(values[index]);
        };
        return row.body();
    }
};

}  // namespace norvane
