#include "views/Canvas.h"

#include <memory>
#include <optional>
#include <utility>

#include "views/SceneBuilder.h"

namespace norvane {
namespace {

class CanvasNode final : public Node {
 public:
    explicit CanvasNode(std::function<void(SceneBuilder&, const Rect&)> draw) : draw_(std::move(draw)) {}

 protected:
    Size fit(TextRuler&, const Proposal& proposal) const override {
        return {proposal.width.value_or(0), proposal.height.value_or(0)};
    }
    void paint(SceneBuilder& scene, const Rect& frame) const override { draw_(scene, frame); }

 private:
    std::function<void(SceneBuilder&, const Rect&)> draw_;
};

class KeptCanvasNode final : public Node {
 public:
    explicit KeptCanvasNode(std::function<void(SceneBuilder&, const Rect&)> draw) : draw_(std::move(draw)) {}

 protected:
    Size fit(TextRuler&, const Proposal& proposal) const override {
        return {proposal.width.value_or(0), proposal.height.value_or(0)};
    }
    void take(Node* before, Update&) override {
        if (before != nullptr) kept_ = static_cast<KeptCanvasNode*>(before)->kept_;
    }
    void paint(SceneBuilder& scene, const Rect& frame) const override {
        if (kept_ == nullptr || palette_ != scene.palette() || kept_->size != frame.size) {
            DisplayList drawn = scene.captured(frame.size, [&] { draw_(scene, {{}, frame.size}); });
            // The same list goes on, so that whoever has painted it need not do so again.
            if (kept_ == nullptr || *kept_ != drawn)
                kept_ = std::make_shared<const DisplayList>(std::move(drawn));
            palette_ = scene.palette();
        }
        scene.picture(kept_, frame.origin, Snapping::toPixels);
    }

 private:
    std::function<void(SceneBuilder&, const Rect&)> draw_;
    mutable std::shared_ptr<const DisplayList> kept_;  // null before it is first painted
    mutable std::optional<Palette> palette_;  // for which this node has painted it; none yet if empty
};

}  // namespace

Element keptCanvas(std::function<void(SceneBuilder&, const Rect&)> draw) {
    return Element(std::make_unique<KeptCanvasNode>(std::move(draw)));
}

Element canvas(std::function<void(SceneBuilder&, const Rect&)> draw) {
    return Element(std::make_unique<CanvasNode>(std::move(draw)));
}

}  // namespace norvane
