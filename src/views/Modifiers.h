#pragma once

#include <functional>
#include <string>

#include "views/Element.h"
#include "views/Node.h"

namespace norvane {

// The nodes behind the modifiers of `Element`, each with its class in a source file of its own.
NodePointer paddedNode(NodePointer child, const Insets& insets);
NodePointer framedNode(NodePointer child, const FrameSize& size);
NodePointer cardNode(NodePointer child, const Card& card);
NodePointer hoverNode(NodePointer child, std::function<void(bool isOver)> handler);
NodePointer condensedNode(NodePointer child);
NodePointer accessibleNode(NodePointer child, AccessibleRole role, std::string name, std::string value);

}  // namespace norvane
