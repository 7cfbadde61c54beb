#include <memory>

#include "views/Modifiers.h"
#include "views/WrappingNode.h"

namespace norvane {
namespace {

class DescribedNode final : public WrappingNode {
 public:
    DescribedNode(NodePointer child, AccessibleRole role, std::string name, std::string value)
        : WrappingNode(std::move(child)), role_(role), name_(std::move(name)), value_(std::move(value)) {}

    void build(SceneBuilder& scene) const override {
        scene.accessible({.role = role_, .name = name_, .value = value_, .frame = frame(), .children = {}},
                         [&] { scene.inaccessible([&] { WrappingNode::build(scene); }); });
    }

 private:
    AccessibleRole role_;
    std::string name_;
    std::string value_;
};

}  // namespace

NodePointer accessibleNode(NodePointer child, AccessibleRole role, std::string name, std::string value) {
    return std::make_unique<DescribedNode>(std::move(child), role, std::move(name), std::move(value));
}

}  // namespace norvane
