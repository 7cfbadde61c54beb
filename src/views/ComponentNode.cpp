#include "views/ComponentNode.h"

#include <utility>

#include "views/Update.h"

namespace norvane {

ComponentNode::~ComponentNode() {
    if (!cell_ || cell_->node != this) return;
    cell_->node = nullptr;
    cell_->host = nullptr;
}

void ComponentNode::take(Node* before, Update& update) {
    cell_ = before != nullptr ? static_cast<ComponentNode*>(before)->cell_ : makeCell();
    cell_->host = &update.host;
    cell_->node = this;
    cell_->isChanged = false;
    setChildren(childrenOf(listOf(body(cell_))));
}

void ComponentNode::evaluate(Update& update) {
    cell_->isChanged = false;
    replaceChildren(childrenOf(listOf(body(cell_))), update);
}

void ComponentNode::didRetire() {
    cell_->host = nullptr;
}

}  // namespace norvane
