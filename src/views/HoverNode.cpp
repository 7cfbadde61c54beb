#include <memory>

#include "views/Modifiers.h"
#include "views/WrappingNode.h"

namespace norvane {
namespace {

class HoverNode final : public WrappingNode {
 public:
    HoverNode(NodePointer child, std::function<void(bool)> handler)
        : WrappingNode(std::move(child)), handler_(std::move(handler)) {}

    void build(SceneBuilder& scene) const override {
        scene.sense(frame(), nullptr, handler_);
        WrappingNode::build(scene);
    }

 private:
    std::function<void(bool)> handler_;
};

}  // namespace

NodePointer hoverNode(NodePointer child, std::function<void(bool isOver)> handler) {
    return std::make_unique<HoverNode>(std::move(child), std::move(handler));
}

}  // namespace norvane
