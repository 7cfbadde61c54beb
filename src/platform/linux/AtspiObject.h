#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/AccessibleNode.h"
#include "platform/linux/AtspiRole.h"
#include "platform/linux/AtspiStates.h"
#include "platform/linux/PixelRect.h"

namespace norvane {

// The number in an object's path, never used again; 0 for the application itself.
using AtspiId = std::uint64_t;

// One object of the application's tree, as assistive technologies are told of it: a plain value.
struct AtspiObject {
    // What a node tells, without its children and its place.
    static AtspiObject of(const AccessibleNode& node);

    AtspiId parent = 0;
    std::vector<AtspiId> children = {};
    AtspiRole role = AtspiRole::panel;
    std::string name = {};
    // What the name does not tell, where the role has no value that would be read out.
    std::string description = {};
    AtspiStates states = {};
    // By name, as the surface performs them.
    std::vector<std::string> actions = {};
    std::optional<AccessibleNumber> number = {};
    std::string valueText = {};
    // Its name can be read letter by letter.
    bool isText = false;
    // A change of its name is said aloud.
    bool isLive = false;
    // On the screen.
    PixelRect extents = {};
    // Of the surface and, in its tree, of the node; none for what stands for no node.
    std::uint64_t surface = 0;
    std::string key = {};

    bool operator==(const AtspiObject&) const = default;
};

}  // namespace norvane
