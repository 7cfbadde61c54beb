#include "scenario/SettledTree.h"

#include <chrono>

namespace norvane {
namespace {

// Longer than anything moves that a person would wait for.
constexpr std::chrono::seconds kRest{2};

}  // namespace

AccessibleNode settledTree(ScriptedPopoverWindow& window, MonotonicInstant now) {
    window.picture();  // what it sets in motion sets out here
    SurfaceContent& content = window.content();
    content.displayList(window.frame().size, now + kRest);
    return content.accessibleTree();
}

}  // namespace norvane
