#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "scenario/Json.h"
#include "scenario/Sight.h"

namespace norvane {

// Something that a transcript can show.
struct ShownThing {
    // A log is a list that only grows: a transcript tells each of its entries once, when it comes.
    enum class Kind { value, log };

    std::string name;
    Kind kind = Kind::value;
    // As it is at this moment; null where there is none, as of a program that does not run.
    std::function<Json(const Sight&)> shown;
};

// All that there is to show. Names of those that belong together begin alike: "snapshot." and the field's.
const std::vector<ShownThing>& shownThings();

// The thing of this name, or, where none is called so, all whose names begin with it and a point: "snapshot"
// is all of its fields. None of an unknown name.
std::vector<const ShownThing*> shownThingsNamed(std::string_view name);

}  // namespace norvane
