#include <algorithm>
#include <memory>

#include "views/Modifiers.h"
#include "views/WrappingNode.h"

namespace norvane {
namespace {

// Lays its child out as wide as the child likes, and shows it narrowed where that is more than the place.
class CondensedNode final : public WrappingNode {
 public:
    explicit CondensedNode(NodePointer child) : WrappingNode(std::move(child)) {}

    Size measure(TextRuler& ruler, const Proposal& proposal) const override {
        const Size natural = child().measure(ruler, {std::nullopt, proposal.height});
        return {proposal.width ? std::min(natural.width, *proposal.width) : natural.width, natural.height};
    }
    void place(TextRuler& ruler, const Rect& frame) override {
        const Size natural = child().measure(ruler, {std::nullopt, frame.size.height});
        const double width = std::max(natural.width, frame.size.width);
        factor_ = width > 0 ? frame.size.width / width : 1;
        setFrame(frame);
        child().place(ruler, {frame.origin, {width, frame.size.height}});
    }
    void build(SceneBuilder& scene) const override {
        scene.narrowed(factor_, frame().minX(), [&] { WrappingNode::build(scene); });
    }

 private:
    double factor_ = 1;
};

}  // namespace

NodePointer condensedNode(NodePointer child) {
    return std::make_unique<CondensedNode>(std::move(child));
}

}  // namespace norvane
