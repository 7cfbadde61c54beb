#include "views/SceneBuilder.h"

#include <utility>

#include "views/Node.h"

namespace norvane {

SceneBuilder::SceneBuilder(const Palette& palette, Size size) : palette_(palette) {
    scene_.picture.size = size;
    scene_.accessible.frame = {{}, size};
    accessibleParent_ = &scene_.accessible;
}

void SceneBuilder::child(std::size_t index, const Node& node) {
    const std::size_t length = path_.size();
    const std::size_t items = std::exchange(itemsOfElement_, 0);
    if (length > 0) path_ += '/';
    path_ += std::to_string(index);
    node.build(*this);
    path_.resize(length);
    itemsOfElement_ = items;
}

void SceneBuilder::fill(const RoundedRect& shape, const Paint& paint) {
    const Color color = palette_.color(paint);
    if (color.alpha <= 0) return;
    const Rect rect = narrowed(shape.rect);
    add(rect, FillShape{{rect, shape.radius}, color});
}

void SceneBuilder::stroke(const RoundedRect& shape, double width, const Paint& paint) {
    const Color color = palette_.color(paint);
    if (color.alpha <= 0 || !(width > 0)) return;
    const Rect rect = narrowed(shape.rect);
    add(rect.outset(width / 2), StrokeShape{{rect, shape.radius}, width, color});
}

void SceneBuilder::text(std::string text, const TextStyle& style, const Rect& frame, const Paint& paint) {
    if (text.empty()) return;
    // Letters may lean a little out of the box in which they were measured.
    const double overhang = style.font.size / 2;
    const Rect box = narrowed(frame);
    if (accessibleParent_ != nullptr) {
        accessibleParent_->children.push_back(
            {.role = AccessibleRole::text, .name = text, .value = {}, .frame = box, .children = {}});
    }
    add(box.outset(overhang),
        DrawText{std::move(text), style, {box.origin, frame.size}, palette_.color(paint), narrowing_.factor});
}

void SceneBuilder::sense(const Rect& frame, std::function<void()> action, std::function<void(bool)> onHover) {
    scene_.regions.push_back({path_, narrowed(frame), std::move(action), std::move(onHover)});
}

void SceneBuilder::narrowed(double factor, double left, const std::function<void()>& contents) {
    const Narrowing outer = narrowing_;
    const Rect line = narrowed(Rect{{left, 0}, {}});
    narrowing_.factor = outer.factor * factor;
    // x -> outer(left) + (x - left) * factor, written as a narrowing about one fixed line.
    narrowing_.left =
        narrowing_.factor == 1 ? 0 : (line.origin.x - left * narrowing_.factor) / (1 - narrowing_.factor);
    contents();
    narrowing_ = outer;
}

void SceneBuilder::accessible(AccessibleNode node, const std::function<void()>& contents) {
    if (accessibleParent_ == nullptr) {
        contents();
        return;
    }
    AccessibleNode* const parent = accessibleParent_;
    accessibleParent_ = &node;
    contents();
    accessibleParent_ = parent;
    parent->children.push_back(std::move(node));
}

void SceneBuilder::inaccessible(const std::function<void()>& contents) {
    AccessibleNode* const parent = std::exchange(accessibleParent_, nullptr);
    contents();
    accessibleParent_ = parent;
}

Scene SceneBuilder::finish() && {
    return std::move(scene_);
}

void SceneBuilder::add(const Rect& bounds, DrawCommand command) {
    std::string key = path_;
    if (itemsOfElement_ > 0) key += '.' + std::to_string(itemsOfElement_);
    ++itemsOfElement_;
    scene_.picture.items.push_back({std::move(key), bounds, std::move(command)});
}

Rect SceneBuilder::narrowed(const Rect& rect) const {
    return {{narrowing_.left + (rect.origin.x - narrowing_.left) * narrowing_.factor, rect.origin.y},
            {rect.size.width * narrowing_.factor, rect.size.height}};
}

}  // namespace norvane
