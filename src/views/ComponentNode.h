#pragma once

#include <memory>

#include "views/Element.h"
#include "views/StateCell.h"
#include "views/WrappingNode.h"

namespace norvane {

// A part of a screen that has state of its own and can be evaluated by itself. It owns the state's cell.
class ComponentNode : public WrappingNode {
 public:
    ~ComponentNode() override;

    // The state has changed: the body makes new children in the place of those of now.
    void evaluate(Update& update);

 protected:
    ComponentNode() : WrappingNode(Element::none()) {}

    virtual std::shared_ptr<StateCell> makeCell() = 0;
    // The body, with the state that is in the cell.
    virtual Element body(const std::shared_ptr<StateCell>& cell) = 0;

    void take(Node* before, Update& update) final;
    void didRetire() override;

 private:
    std::shared_ptr<StateCell> cell_;
};

}  // namespace norvane
