#pragma once

#include <stdexcept>

namespace norvane {

// Why a line of a scenario cannot be played, for whoever wrote it.
class Objection final : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

}  // namespace norvane
