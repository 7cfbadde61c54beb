#pragma once

#include "gallery/Exhibit.h"

namespace norvane::gallery {

DisplayList typefaces(Stage& stage);
DisplayList paragraphs(Stage& stage);

}  // namespace norvane::gallery
