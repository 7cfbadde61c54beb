#include "views/SceneBuilder.h"

#include <cmath>
#include <iterator>
#include <variant>

#include "views/Node.h"

namespace norvane {
namespace {

// How far a blur reaches: three passes of a box stay within three standard deviations, half a radius each.
double reachOf(const DrawShadow& shadow) {
    const double line = shadow.stroke ? shadow.stroke->width / 2 : 0;
    return std::max(shadow.radius, 0.0) * 1.5 + line + 1;
}

// A miter may stick out by more than half the line; ours are rectangles, where it is the diagonal.
constexpr double kMiter = 1.4143;

double reachOf(const StrokeStyle& style) {
    return style.width / 2 * (style.join == LineJoin::miter ? kMiter : 1);
}

// By this much an edge may be moved to a whole pixel, on screens of one pixel a point and more.
constexpr double kSnappingSlack = 1;

// How far the ring of the keyboard is from what it goes around, and how wide it is.
constexpr double kRingGap = 2;
constexpr double kRingWidth = 2;

// For those who work with frames elsewhere. What is moved or scaled by no number is nowhere.
Rect finiteOrNowhere(const Rect& rect) {
    const bool isFinite = std::isfinite(rect.minX()) && std::isfinite(rect.minY()) &&
                          std::isfinite(rect.size.width) && std::isfinite(rect.size.height);
    return isFinite ? rect : Rect{};
}

bool isFinite(const Rect& rect) {
    return std::isfinite(rect.minX()) && std::isfinite(rect.minY()) && std::isfinite(rect.maxX()) &&
           std::isfinite(rect.maxY());
}

// Of what a part of the tree paints that stands still. It is no part of an element's own path.
constexpr const char* kSharedKey = "/=";
// Fewer items are made anew as fast as they are shared.
constexpr std::ptrdiff_t kFewestShared = 3;

// The command with that opacity, where it paints no pixel twice, so that it needs no group for it.
bool fade(DrawCommand& command, double opacity) {
    const auto faded = [opacity](const Fill& fill) {
        return fill.isPlain()
                   ? Fill(fill.from.withOpacity(opacity))
                   : Fill(fill.from.withOpacity(opacity), fill.to.withOpacity(opacity), fill.start, fill.end);
    };
    if (auto* const filled = std::get_if<FillShape>(&command)) {
        filled->fill = faded(filled->fill);
    } else if (auto* const stroked = std::get_if<StrokeShape>(&command)) {
        stroked->fill = faded(stroked->fill);
    } else if (auto* const symbol = std::get_if<DrawSymbol>(&command)) {
        symbol->color = symbol->color.withOpacity(opacity);
    } else if (auto* const picture = std::get_if<DrawPicture>(&command)) {
        picture->opacity *= opacity;
    } else {
        return false;
    }
    return true;
}

// How far a thing is from its place that moves in from the edge.
Point wayFrom(Edge edge, Size size) {
    switch (edge) {
        case Edge::top:
            return {0, -size.height};
        case Edge::bottom:
            return {0, size.height};
        case Edge::leading:
            return {-size.width, 0};
        case Edge::trailing:
            return {size.width, 0};
    }
    return {};
}

}  // namespace

SceneBuilder::SceneBuilder(const Palette& palette, Size size, MonotonicInstant now,
                           const Attention& attention, Purpose purpose, Motion motion, std::uint64_t edition)
    : palette_(palette),
      now_(now),
      attention_(attention),
      motion_(motion),
      visible_{{}, size},
      edition_(purpose == Purpose::picture ? edition : 0) {
    scene_.picture.size = size;
    scene_.accessible.frame = {{}, size};
    if (purpose == Purpose::accessibleTree) accessibleParent_ = &scene_.accessible;
}

template <typename Contents>
void SceneBuilder::under(std::string_view key, Contents contents) {
    const std::size_t length = path_.size();
    const std::size_t items = std::exchange(itemsOfElement_, 0);
    if (length > 0) path_ += '/';
    path_ += key;
    contents();
    path_.resize(length);
    itemsOfElement_ = items;
}

void SceneBuilder::child(const Child& child) {
    under(child.key, [&] { present(child, value(child.presence)); });
}

void SceneBuilder::leaving(std::size_t index, const Child& child) {
    // It is let go of at the next evaluation; until then it may be anywhere that it can be seen.
    if (isStill() || !child.presence.isMovingAt(now_)) return;
    const bool wasInert = std::exchange(isInert_, true);
    under('~' + std::to_string(index) + '~' + child.key,
          [&] { inaccessible([&] { present(child, value(child.presence)); }); });
    isInert_ = wasInert;
}

void SceneBuilder::present(const Child& child, double presence) {
    const Transition& transition = child.transition;
    if (presence == 1) {
        build(*child.node);
        return;
    }
    Point way;
    if (transition.movesFrom) {
        way = wayFrom(*transition.movesFrom, child.node->frame().size);
        way = {way.x * (1 - presence), way.y * (1 - presence)};
    }
    // While a spring swings beyond its end, the thing is there.
    const double opacity = transition.fades ? std::min(presence, 1.0) : 1.0;
    moved(way, [&] { group(opacity, std::nullopt, [&] { child.node->build(*this); }); });
}

StillScene::Situation SceneBuilder::situation() const {
    return {.edition = edition_,
            .palette = palette_,
            .origin = origin_,
            .scaleX = transform_.scaleX,
            .scaleY = transform_.scaleY,
            .moved = {transform_.x, transform_.y},
            .visible = visible_,
            .isInert = isInert_};
}

void SceneBuilder::build(const Node& node) {
    if (edition_ == 0) {
        node.build(*this);
        return;
    }
    const StillScene::Situation situation = this->situation();
    if (const auto& still = node.still(); still && still->situation == situation) {
        items_.push_back({path_ + kSharedKey, still->bounds, DrawShared{still->items}});
        scene_.regions.insert(scene_.regions.end(), still->regions.begin(), still->regions.end());
        return;
    }
    const auto firstItem = static_cast<std::ptrdiff_t>(items_.size());
    const auto firstRegion = static_cast<std::ptrdiff_t>(scene_.regions.size());
    const bool movedBefore = std::exchange(moves_, false);
    node.build(*this);
    const auto first = items_.begin() + firstItem;
    if (!moves_ && items_.end() - first >= kFewestShared) {
        StillScene still{.situation = situation,
                         .items = std::make_shared<const std::vector<DisplayItem>>(
                             std::make_move_iterator(first), std::make_move_iterator(items_.end())),
                         .bounds = {},
                         .regions = {scene_.regions.begin() + firstRegion, scene_.regions.end()}};
        for (const DisplayItem& item : *still.items)
            still.bounds = still.bounds.united(item.bounds);
        items_.erase(first, items_.end());
        items_.push_back({path_ + kSharedKey, still.bounds, DrawShared{still.items}});
        node.keepStill(std::make_shared<const StillScene>(std::move(still)));
    }
    moves_ = moves_ || movedBefore;
}

void SceneBuilder::fill(const Shape& shape, const Fill& fill, Snapping snapping) {
    if (fill.isClear()) return;
    const Shape there = transformed(shape);
    const double slack = snapping == Snapping::toPixels ? kSnappingSlack : 0;
    add(boundsOf(there).outset(slack), FillShape{there, transformed(fill), snapping});
}

void SceneBuilder::stroke(const Shape& shape, const StrokeStyle& style, const Fill& fill, Snapping snapping) {
    if (fill.isClear() || !(style.width > 0)) return;
    const Shape there = transformed(shape);
    StrokeStyle line = style;
    line.width *= scale();
    line.dashOn *= scale();
    line.dashOff *= scale();
    const double slack = snapping == Snapping::toPixels ? kSnappingSlack : 0;
    add(boundsOf(there).outset(reachOf(line) + slack), StrokeShape{there, line, transformed(fill), snapping});
}

void SceneBuilder::shadow(DrawShadow shadow) {
    if (!(shadow.color.alpha > 0)) return;
    shadow.shape = transformed(shadow.shape);
    if (shadow.stroke) shadow.stroke->width *= scale();
    shadow.radius *= scale();
    shadow.offset = {shadow.offset.x * transform_.scaleX, shadow.offset.y * transform_.scaleY};
    Rect bounds = boundsOf(shadow.shape).outset(reachOf(shadow));
    bounds.origin = {bounds.minX() + shadow.offset.x, bounds.minY() + shadow.offset.y};
    add(bounds, std::move(shadow));
}

void SceneBuilder::text(const std::string& text, const TextStyle& style, const Rect& frame,
                        const Color& color) {
    if (text.empty()) return;
    const Rect box = transformed(frame);
    if (accessibleParent_ != nullptr) {
        accessibleParent_->children.push_back(tell({.role = AccessibleRole::text, .name = text}, frame));
    }
    if (!(color.alpha > 0)) return;
    // Letters may lean a little out of the box in which they were measured.
    const double overhang = style.font.size / 2 * std::max(transform_.scaleX, transform_.scaleY);
    add(box.outset(overhang),
        DrawText{text, style, {box.origin, frame.size}, color, transform_.scaleX, transform_.scaleY});
}

void SceneBuilder::symbol(const std::string& name, const Rect& frame, const Color& color) {
    if (!(color.alpha > 0)) return;
    const Rect box = transformed(frame);
    add(box.outset(kSnappingSlack), DrawSymbol{name, box, color});
}

void SceneBuilder::image(const std::string& name, const Rect& frame) {
    const Rect box = transformed(frame);
    add(box.outset(kSnappingSlack), DrawImage{name, box});
}

void SceneBuilder::picture(std::shared_ptr<const DisplayList> picture, Point at, Snapping snapping) {
    if (!picture) return;
    // A kept picture is shown as it is: it is moved, never scaled.
    const Point there = transformed(at);
    const Rect bounds = Rect{there, picture->size}.outset(kSnappingSlack);
    add(bounds, DrawPicture{std::move(picture), there, 1, snapping});
}

SceneBuilder::Grouping SceneBuilder::beginGroup(const std::optional<RoundedRect>& clip) {
    Grouping outer{.key = nextKey(),
                   .items = std::exchange(items_, {}),
                   .clip = clip_,
                   .visible = visible_,
                   .itemsOfElement = itemsOfElement_};
    clip_.reset();
    if (clip) {
        clip_ = RoundedRect{transformed(clip->rect), clip->radius * scale(), clip->corners};
        visible_ = visible_.intersection(clip_->rect);
    }
    return outer;
}

void SceneBuilder::endGroup(double opacity, Grouping outer) {
    DrawGroup group{
        .opacity = opacity, .clip = clip_, .items = std::exchange(items_, std::move(outer.items))};
    clip_ = outer.clip;
    visible_ = outer.visible;
    if (group.items.empty()) return;
    if (!group.clip && group.items.size() == 1 && fade(group.items.front().command, opacity)) {
        items_.push_back(std::move(group.items.front()));
        return;
    }
    Rect bounds;
    for (const DisplayItem& item : group.items)
        bounds = bounds.united(item.bounds);
    if (group.clip) bounds = bounds.intersection(group.clip->rect);
    if (bounds.isEmpty()) return;
    items_.push_back({std::move(outer.key), bounds, std::move(group)});
}

void SceneBuilder::sense(const Rect& frame, const std::shared_ptr<const Interaction>& interaction,
                         double radius) {
    if (isInert_ || !interaction) return;
    const Rect whole = transformed(frame);
    const Rect seen = whole.intersection(visible_);
    // What is scrolled out of sight can be reached by the keyboard all the same.
    if (seen.isEmpty() && !interaction->takesFocus) return;
    if (isTold() && interaction->takesFocus) stopsTab_ = path_;
    scene_.regions.push_back({path_, seen, whole, interaction, radius * scale()});
}

AccessibleNode SceneBuilder::tell(const Accessible& told, const Rect& frame) {
    AccessibleNode node{.role = told.role,
                        .name = told.name,
                        .value = told.value,
                        .frame = finiteOrNowhere(transformed(frame)),
                        .children = {},
                        .key = path_,
                        .actions = {},
                        .isOn = told.isOn,
                        .isExpanded = told.isExpanded,
                        .isEnabled = told.isEnabled,
                        .isFocusable = stopsTab_ == path_,
                        .isFocused = !path_.empty() && attention_.focused == path_,
                        .number = told.number,
                        .isLive = told.isLive};
    for (const auto& [name, action] : told.actions) {
        node.actions.push_back(name);
        scene_.actions.emplace(path_, std::pair(name, action));
    }
    return node;
}

Scene SceneBuilder::finish() && {
    if (livelyCount_ > kMostLively) scene_.frameRate = std::min(scene_.frameRate, kCrowdedRate);
    if (attention_.showsFocus && !attention_.focused.empty()) {
        const auto focused =
            std::find_if(scene_.regions.begin(), scene_.regions.end(), [&](const SensitiveRegion& region) {
                return region.key == attention_.focused && region.interaction->takesFocus;
            });
        if (focused != scene_.regions.end() && !focused->frame.isEmpty()) {
            const Rect ring = focused->frame.outset(kRingGap);
            path_ = "//focus";
            itemsOfElement_ = 0;
            stroke(RoundedRect{ring, focused->radius + kRingGap}, {.width = kRingWidth},
                   palette_.color(Ink::controlAccentColor));
        }
    }
    scene_.picture.items = std::move(items_);
    return std::move(scene_);
}

void SceneBuilder::add(const Rect& bounds, DrawCommand command) {
    std::string key = nextKey();
    // What is out of sight is not painted, and what goes on in it changes nothing.
    if (!bounds.intersects(visible_)) return;
    // Nor is what has no place, or holds something that is no number: it would differ from itself each time.
    if (!isFinite(bounds) || command != command) return;
    items_.push_back({std::move(key), bounds, std::move(command)});
}

std::string SceneBuilder::nextKey() {
    std::string key = path_;
    if (itemsOfElement_ > 0) key += "/." + std::to_string(itemsOfElement_);
    ++itemsOfElement_;
    return key;
}

Point SceneBuilder::transformed(Point point) const {
    return {point.x * transform_.scaleX + transform_.x, point.y * transform_.scaleY + transform_.y};
}

Rect SceneBuilder::transformed(const Rect& rect) const {
    return {transformed(rect.origin),
            {rect.size.width * transform_.scaleX, rect.size.height * transform_.scaleY}};
}

Shape SceneBuilder::transformed(const Shape& shape) const {
    if (transform_ == Transform{}) return shape;
    if (const auto* rounded = std::get_if<RoundedRect>(&shape)) {
        return RoundedRect{transformed(rounded->rect), rounded->radius * scale(), rounded->corners};
    }
    if (const auto* arc = std::get_if<Arc>(&shape)) {
        return Arc{transformed(arc->center), arc->radius * scale(), arc->from, arc->to};
    }
    const auto& path = std::get<PlacedPath>(shape);
    return PlacedPath{path.path, transformed(path.offset), path.scaleX * transform_.scaleX,
                      path.scaleY * transform_.scaleY};
}

Fill SceneBuilder::transformed(const Fill& fill) const {
    if (fill.isPlain()) return fill.from;
    return {fill.from, fill.to, transformed(fill.start), transformed(fill.end)};
}

}  // namespace norvane
