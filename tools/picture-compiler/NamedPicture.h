#pragma once

#include <string>

#include "drawing/Picture.h"

namespace norvane {

struct NamedPicture {
    std::string name;
    Picture picture;
};

}  // namespace norvane
