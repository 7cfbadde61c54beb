#include <memory>

#include "views/Modifiers.h"
#include "views/WrappingNode.h"

namespace norvane {
namespace {

class CardNode final : public WrappingNode {
 public:
    CardNode(NodePointer child, const Card& card) : WrappingNode(std::move(child)), card_(card) {}

    void build(SceneBuilder& scene) const override {
        scene.fill({frame(), card_.radius}, card_.fill);
        scene.stroke({frame(), card_.radius}, card_.borderWidth, card_.border);
        WrappingNode::build(scene);
    }

 private:
    Card card_;
};

}  // namespace

NodePointer cardNode(NodePointer child, const Card& card) {
    return std::make_unique<CardNode>(std::move(child), card);
}

}  // namespace norvane
