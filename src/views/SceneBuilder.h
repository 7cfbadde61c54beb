#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "views/Palette.h"
#include "views/Scene.h"

namespace norvane {

class Node;

// Collects the scene while the tree is walked, parents before children. It knows the path of the element that
// is being built and the narrowing that holds for it.
class SceneBuilder {
 public:
    SceneBuilder(const Palette& palette, Size size);
    SceneBuilder(const SceneBuilder&) = delete;
    SceneBuilder& operator=(const SceneBuilder&) = delete;

    const Palette& palette() const { return palette_; }

    // Builds a child under this index of its parent.
    void child(std::size_t index, const Node& node);

    void fill(const RoundedRect& shape, const Paint& paint);
    void stroke(const RoundedRect& shape, double width, const Paint& paint);
    void text(std::string text, const TextStyle& style, const Rect& frame, const Paint& paint);
    void sense(const Rect& frame, std::function<void()> action, std::function<void(bool)> onHover);

    // What `contents` builds is narrowed by `factor` about the vertical line at `left`.
    void narrowed(double factor, double left, const std::function<void()>& contents);

    // What `contents` tells of itself becomes the children of this node.
    void accessible(AccessibleNode node, const std::function<void()>& contents);
    // Tells nothing of what `contents` builds.
    void inaccessible(const std::function<void()>& contents);

    Scene finish() &&;

 private:
    void add(const Rect& bounds, DrawCommand command);
    Rect narrowed(const Rect& rect) const;

    struct Narrowing {
        double factor = 1;
        double left = 0;
    };

    const Palette& palette_;
    Scene scene_;
    std::string path_;
    std::size_t itemsOfElement_ = 0;
    Narrowing narrowing_;
    AccessibleNode* accessibleParent_;  // null where nothing is told
};

}  // namespace norvane
