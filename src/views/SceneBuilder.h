#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "views/Accessible.h"
#include "views/Animated.h"
#include "views/Attention.h"
#include "views/Child.h"
#include "views/Palette.h"
#include "views/Scene.h"
#include "views/StillScene.h"

namespace norvane {

// Collects the scene of one moment while the tree is walked, parents before children. It knows the path of
// the element that is being built and all that holds for it there: where its parent stands at this moment,
// what it is moved and scaled by, and what is cut off of it.
class SceneBuilder {
 public:
    // Frames a second, while something moves: what goes on evenly needs fewer, and what breathes, over
    // seconds and without an end, fewer still.
    static constexpr double kBreathingRate = 15;
    static constexpr double kSteadyRate = 30;
    static constexpr double kLivelyRate = 60;
    // Where more than so many values move at once (a ring for each of many processors), nobody follows one of
    // them, and fewer pictures do.
    static constexpr int kMostLively = 96;
    static constexpr double kCrowdedRate = 20;

    enum class Purpose { picture, accessibleTree };
    enum class Motion { all, none };

    // `edition` is of the tree: what stood still in the last picture of the same one is taken from there. 0
    // for a tree that nothing is kept of.
    SceneBuilder(const Palette& palette, Size size, MonotonicInstant now, const Attention& attention,
                 Purpose purpose = Purpose::picture, Motion motion = Motion::all, std::uint64_t edition = 0);
    SceneBuilder(const SceneBuilder&) = delete;
    SceneBuilder& operator=(const SceneBuilder&) = delete;

    const Palette& palette() const { return palette_; }
    MonotonicInstant now() const { return now_; }
    // Whether it is the accessible tree that is asked for.
    bool isTold() const { return accessibleParent_ != nullptr; }

    // Whether nothing moves: what does otherwise is where it is going to be.
    bool isStill() const { return motion_ == Motion::none; }

    // Where a value that is painted stands. One that moves wants another picture.
    template <typename T>
    T value(const Animated<T>& value) {
        if (isStill()) return value.target();
        if (const auto animation = value.animationAt(now_)) {
            const bool isEven = animation->curve == Animation::Curve::linear;
            const bool isLively = !animation->repeats && !isEven;
            wantFrames(isLively ? kLivelyRate : isEven ? kSteadyRate : kBreathingRate);
            if (isLively) ++livelyCount_;
        }
        return value.valueAt(now_);
    }
    // The same in steps too small to be seen, on its way to an end: what has not come a step further since
    // the last picture is not painted again. It is at its end when it is there, and not beyond it by a step.
    double stepped(const Animated<double>& value, double step) {
        const double now = this->value(value);
        if (isStill()) return now;
        const auto animation = value.animationAt(now_);
        if (!animation || animation->repeats || !(step > 0)) return now;
        const double target = value.target();
        const double whole = std::round(now / step) * step;
        return (now - target) * (whole - target) < 0 ? target : whole;
    }
    void wantFrames(double perSecond) {
        moves_ = true;
        scene_.frameRate = std::max(scene_.frameRate, perSecond);
    }

    // Where the parent of the node that is being built stands, before all moving and scaling.
    Point origin() const { return origin_; }
    template <typename Contents>
    void inside(Point origin, Contents contents) {
        const Point outer = std::exchange(origin_, origin);
        contents();
        origin_ = outer;
    }

    // Builds a child, and one that is on its way out.
    void child(const Child& child);
    void leaving(std::size_t index, const Child& child);

    void fill(const Shape& shape, const Fill& fill, Snapping snapping = Snapping::none);
    void stroke(const Shape& shape, const StrokeStyle& style, const Fill& fill,
                Snapping snapping = Snapping::none);
    void shadow(DrawShadow shadow);
    void text(const std::string& text, const TextStyle& style, const Rect& frame, const Color& color);
    void symbol(const std::string& name, const Rect& frame, const Color& color);
    void image(const std::string& name, const Rect& frame);
    void picture(std::shared_ptr<const DisplayList> picture, Point at, Snapping snapping = Snapping::none);
    // What `contents` paints with its origin at 0, as a list of that size of its own.
    template <typename Contents>
    DisplayList captured(Size size, Contents contents) {
        auto around = std::exchange(items_, {});
        const Transform outer = std::exchange(transform_, {});
        const Rect visible = std::exchange(visible_, {{}, size});
        const std::size_t items = std::exchange(itemsOfElement_, 0);
        contents();
        itemsOfElement_ = items;
        visible_ = visible;
        transform_ = outer;
        return {size, std::exchange(items_, std::move(around))};
    }

    // What `contents` paints, as one thing: with one opacity, cut at the clip.
    template <typename Contents>
    void group(double opacity, const std::optional<RoundedRect>& clip, Contents contents) {
        if (!(opacity > 0)) return;
        if (opacity >= 1 && !clip) {
            contents();
            return;
        }
        Grouping outer = beginGroup(clip);
        contents();
        endGroup(opacity, std::move(outer));
    }
    template <typename Contents>
    void moved(Point by, Contents contents) {
        const Transform outer = transform_;
        transform_.x += by.x * outer.scaleX;
        transform_.y += by.y * outer.scaleY;
        contents();
        transform_ = outer;
    }
    // About a point that stays where it is.
    template <typename Contents>
    void scaled(double scaleX, double scaleY, Point about, Contents contents) {
        const Transform outer = transform_;
        transform_.x += about.x * (1 - scaleX) * outer.scaleX;
        transform_.y += about.y * (1 - scaleY) * outer.scaleY;
        transform_.scaleX *= scaleX;
        transform_.scaleY *= scaleY;
        contents();
        transform_ = outer;
    }

    // The element minds pointer or keyboard within the frame.
    void sense(const Rect& frame, const std::shared_ptr<const Interaction>& interaction, double radius = 4);
    // The element that is being built is held down at this moment.
    bool isPressed() const { return attention_.pressed == path_; }

    // What `contents` tells of itself becomes the children of this node, or is not told.
    template <typename Contents>
    void accessible(const Accessible& told, const Rect& frame, Contents contents) {
        if (accessibleParent_ == nullptr) {
            contents();
            return;
        }
        AccessibleNode node = tell(told, frame);
        AccessibleNode* const parent = std::exchange(accessibleParent_, told.containsMore ? &node : nullptr);
        contents();
        accessibleParent_ = parent;
        parent->children.push_back(std::move(node));
    }
    template <typename Contents>
    void inaccessible(Contents contents) {
        AccessibleNode* const parent = std::exchange(accessibleParent_, nullptr);
        contents();
        accessibleParent_ = parent;
    }

    Scene finish() &&;

 private:
    struct Transform {
        double scaleX = 1;
        double scaleY = 1;
        double x = 0;
        double y = 0;
        bool operator==(const Transform&) const = default;
    };
    struct Grouping {
        std::string key;
        std::vector<DisplayItem> items;  // of what is around the group
        std::optional<RoundedRect> clip;
        Rect visible;
        std::size_t itemsOfElement = 0;
    };

    template <typename Contents>
    void under(std::string_view key, Contents contents);
    void present(const Child& child, double presence);
    void build(const Node& node);
    StillScene::Situation situation() const;

    Grouping beginGroup(const std::optional<RoundedRect>& clip);
    void endGroup(double opacity, Grouping outer);

    void add(const Rect& bounds, DrawCommand command);
    std::string nextKey();
    AccessibleNode tell(const Accessible& told, const Rect& frame);

    Point transformed(Point point) const;
    Rect transformed(const Rect& rect) const;
    Shape transformed(const Shape& shape) const;
    Fill transformed(const Fill& fill) const;
    double scale() const { return std::min(transform_.scaleX, transform_.scaleY); }

    const Palette palette_;
    const MonotonicInstant now_;
    const Attention& attention_;
    const Motion motion_;
    Scene scene_;
    std::vector<DisplayItem> items_;  // of the innermost group
    std::optional<RoundedRect> clip_;
    std::string path_;
    std::size_t itemsOfElement_ = 0;
    Point origin_;
    Transform transform_;
    Rect visible_;
    bool isInert_ = false;
    const std::uint64_t edition_;
    int livelyCount_ = 0;
    bool moves_ = false;                          // something in the part of the tree that is being built
    AccessibleNode* accessibleParent_ = nullptr;  // null where nothing is told
    std::optional<std::string> stopsTab_;         // the last element that can have the keyboard
};

}  // namespace norvane
