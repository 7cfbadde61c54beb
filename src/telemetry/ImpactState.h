#pragma once

namespace norvane {

// How much energy the machine is using. Ordered: a later state is a higher one.
enum class ImpactState : int {
    low = 0,
    moderate = 1,
    high = 2,
};

}  // namespace norvane
