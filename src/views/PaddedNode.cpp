#include <algorithm>
#include <memory>

#include "views/Modifiers.h"
#include "views/WrappingNode.h"

namespace norvane {
namespace {

class PaddedNode final : public WrappingNode {
 public:
    PaddedNode(NodePointer child, const Insets& insets) : WrappingNode(std::move(child)), insets_(insets) {}

    Size measure(TextRuler& ruler, const Proposal& proposal) const override {
        const double horizontal = insets_.left + insets_.right;
        const double vertical = insets_.top + insets_.bottom;
        const auto less = [](std::optional<double> length, double by) {
            return length ? std::optional(std::max(*length - by, 0.0)) : std::nullopt;
        };
        const Size inner =
            child().measure(ruler, {less(proposal.width, horizontal), less(proposal.height, vertical)});
        return {inner.width + horizontal, inner.height + vertical};
    }
    void place(TextRuler& ruler, const Rect& frame) override { child().place(ruler, frame.inset(insets_)); }

 private:
    Insets insets_;
};

}  // namespace

NodePointer paddedNode(NodePointer child, const Insets& insets) {
    return std::make_unique<PaddedNode>(std::move(child), insets);
}

}  // namespace norvane
