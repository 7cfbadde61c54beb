#pragma once

#include "gallery/Exhibit.h"

namespace norvane::gallery {

DisplayList symbols(Stage& stage);
DisplayList images(Stage& stage);
DisplayList inks(Stage& stage);

}  // namespace norvane::gallery
