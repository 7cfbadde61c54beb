#include "views/Button.h"

#include <memory>
#include <utility>

#include "views/WrappingNode.h"

namespace norvane {
namespace {

class ButtonNode final : public WrappingNode {
 public:
    ButtonNode(NodePointer label, std::function<void()> action)
        : WrappingNode(std::move(label)), action_(std::move(action)) {}

    void build(SceneBuilder& scene) const override {
        scene.sense(frame(), action_, nullptr);
        WrappingNode::build(scene);
    }

 private:
    std::function<void()> action_;
};

}  // namespace

Element button(std::string name, Element label, std::function<void()> action) {
    Element plain(std::make_unique<ButtonNode>(std::move(label).take(), std::move(action)));
    return std::move(plain).accessible(AccessibleRole::button, std::move(name));
}

}  // namespace norvane
