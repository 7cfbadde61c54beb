#pragma once

namespace norvane {

// How much of an application the desktop shows: everything, or what it puts up by itself and nothing else.
enum class ActivationPolicy : int {
    regular = 0,
    accessory = 1,
};

}  // namespace norvane
