#pragma once

#include <string>

#include "Environment.h"

namespace norvane {

// One way of running the program: with or without a session bus.
struct Surroundings {
    std::string name;
    Environment environment;
};

}  // namespace norvane
