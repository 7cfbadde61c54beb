#include "views/Image.h"

#include <memory>
#include <utility>

#include "views/SceneBuilder.h"
#include "views/Update.h"

namespace norvane {
namespace {

class ImageNode final : public Node {
 public:
    ImageNode(std::string name, Size size) : name_(std::move(name)), size_(size) {}

 protected:
    Size fit(TextRuler&, const Proposal&) const override { return size_; }
    void take(Node* before, Update& update) override {
        const auto* last = static_cast<const ImageNode*>(before);
        if (last != nullptr && !(last->size_ == size_)) update.layoutChanged();
    }
    void paint(SceneBuilder& scene, const Rect& frame) const override { scene.image(name_, frame); }

 private:
    std::string name_;
    Size size_;
};

}  // namespace

Element image(std::string name, Size size) {
    return Element(std::make_unique<ImageNode>(std::move(name), size));
}

}  // namespace norvane
