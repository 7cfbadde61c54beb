#include "views/Text.h"

#include <memory>
#include <utility>

#include "views/SceneBuilder.h"

namespace norvane {
namespace {

class TextNode final : public Node {
 public:
    TextNode(std::string text, const TextStyle& style, const Paint& paint)
        : text_(std::move(text)), style_(style), paint_(paint) {}

    Size measure(TextRuler& ruler, const Proposal& proposal) const override {
        return ruler.measure(text_, style_, proposal.width.value_or(TextRuler::kUnlimitedWidth)).size;
    }
    void place(TextRuler&, const Rect& frame) override { frame_ = frame; }
    void build(SceneBuilder& scene) const override { scene.text(text_, style_, frame_, paint_); }

 private:
    std::string text_;
    TextStyle style_;
    Paint paint_;
    Rect frame_;
};

}  // namespace

Element text(std::string text, const TextStyle& style, const Paint& paint) {
    return Element(std::make_unique<TextNode>(std::move(text), style, paint));
}

}  // namespace norvane
