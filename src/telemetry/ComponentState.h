#pragma once

namespace norvane {

// Whether a component is under critical load. Ordered: a later state is a worse one.
enum class ComponentState : int {
    normal = 0,
    critical = 1,
};

}  // namespace norvane
