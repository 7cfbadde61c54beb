#include "views/Spacer.h"

#include <memory>

namespace norvane {
namespace {

class SpacerNode final : public Node {
 public:
    Size measure(TextRuler&, const Proposal& proposal) const override {
        return {proposal.width.value_or(0), 0};
    }
    void place(TextRuler&, const Rect&) override {}
    void build(SceneBuilder&) const override {}
};

}  // namespace

Element spacer() {
    return Element(std::make_unique<SpacerNode>());
}

}  // namespace norvane
