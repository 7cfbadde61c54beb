#include <algorithm>
#include <memory>

#include "views/Modifiers.h"
#include "views/WrappingNode.h"

namespace norvane {
namespace {

class FramedNode final : public WrappingNode {
 public:
    FramedNode(NodePointer child, const FrameSize& size) : WrappingNode(std::move(child)), size_(size) {}

    Size measure(TextRuler& ruler, const Proposal& proposal) const override {
        const Size inner = child().measure(ruler, inside(proposal));
        return {length(size_.width, size_.minWidth, size_.maxWidth, proposal.width, inner.width),
                length(size_.height, 0, size_.maxHeight, proposal.height, inner.height)};
    }
    void place(TextRuler& ruler, const Rect& frame) override {
        const Size inner = child().measure(ruler, inside({frame.size.width, frame.size.height}));
        child().place(ruler, {{frame.minX() + alignedOffset(size_.horizontal, inner.width, frame.size.width),
                               frame.minY() + alignedOffset(size_.vertical, inner.height, frame.size.height)},
                              inner});
    }

 private:
    // What the child is offered of what the frame is offered.
    Proposal inside(const Proposal& proposal) const {
        const auto fixedOr = [](std::optional<double> fixed, std::optional<double> most,
                                std::optional<double> offered) {
            if (fixed) return fixed;
            return most && offered ? std::optional(std::min(*most, *offered)) : offered;
        };
        return {fixedOr(size_.width, size_.maxWidth, proposal.width),
                fixedOr(size_.height, size_.maxHeight, proposal.height)};
    }
    static double length(std::optional<double> fixed, double least, std::optional<double> most,
                         std::optional<double> offered, double inner) {
        if (fixed) return *fixed;
        if (most && offered) inner = std::max(inner, std::min(*most, *offered));
        return std::max(inner, least);
    }

    FrameSize size_;
};

}  // namespace

NodePointer framedNode(NodePointer child, const FrameSize& size) {
    return std::make_unique<FramedNode>(std::move(child), size);
}

}  // namespace norvane
