#include "views/DepthStack.h"

#include <algorithm>
#include <memory>

#include "views/Update.h"

namespace norvane {
namespace {

class DepthStackNode final : public Node {
 public:
    DepthStackNode(const DepthOptions& options, ElementList members)
        : Node(members.takeChildren()), options_(options) {}

 protected:
    Size fit(TextRuler& ruler, const Proposal& proposal) const override {
        Size size;
        for (const Child& member : children()) {
            const Size its = member.node->measure(ruler, proposal);
            size = {std::max(size.width, its.width), std::max(size.height, its.height)};
        }
        return size;
    }

    void placeChildren(TextRuler& ruler, const Rect& frame) override {
        for (const Child& member : children()) {
            const Size its = member.node->measure(ruler, {frame.size.width, frame.size.height});
            const Point at{frame.minX() + alignedOffset(options_.horizontal, its.width, frame.size.width),
                           frame.minY() + alignedOffset(options_.vertical, its.height, frame.size.height)};
            member.node->place(ruler, {at, its});
        }
    }

    void take(Node* before, Update& update) override {
        const auto* last = static_cast<const DepthStackNode*>(before);
        if (last != nullptr && !(last->options_ == options_)) update.layoutChanged();
    }

 private:
    DepthOptions options_;
};

}  // namespace

Element depthStack(const DepthOptions& options, ElementList members) {
    return Element(std::make_unique<DepthStackNode>(options, std::move(members)));
}

}  // namespace norvane
