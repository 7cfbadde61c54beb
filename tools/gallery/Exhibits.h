#pragma once

#include <span>

#include "gallery/Exhibit.h"

namespace norvane {

// All of the gallery.
std::span<const Exhibit> exhibits();

}  // namespace norvane
