#pragma once

namespace norvane {

class ComponentNode;
class ViewHost;

// The state of one component, without a word about what it is. The component's node has the cell and hands
// it on to the node that takes its place; handlers that reach the state keep it readable.
class StateCell {
 public:
    virtual ~StateCell() = default;

    // Null once the component has left the tree: a change then changes nothing.
    ViewHost* host = nullptr;
    // The node of now; null while there is none.
    ComponentNode* node = nullptr;
    // It has been changed since the component was evaluated.
    bool isChanged = false;
};

}  // namespace norvane
