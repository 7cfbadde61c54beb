#pragma once

#include <string_view>

#include "drawing/DisplayList.h"

namespace norvane {

class Stage;

// One picture of the gallery: the name of its files, and how it comes about on a fresh stage.
struct Exhibit {
    std::string_view name;
    DisplayList (*picture)(Stage& stage);
};

}  // namespace norvane
