#include "views/Divider.h"

#include <memory>

#include "views/SceneBuilder.h"

namespace norvane {
namespace {

class DividerNode final : public Node {
 public:
    Size measure(TextRuler&, const Proposal& proposal) const override {
        return {proposal.width.value_or(0), 1};
    }
    void place(TextRuler&, const Rect& frame) override { frame_ = frame; }
    void build(SceneBuilder& scene) const override { scene.fill({frame_, 0}, Ink::separator); }

 private:
    Rect frame_;
};

}  // namespace

Element divider() {
    return Element(std::make_unique<DividerNode>());
}

}  // namespace norvane
