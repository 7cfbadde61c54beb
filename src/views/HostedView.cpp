#include "views/HostedView.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "views/Palette.h"
#include "views/SceneBuilder.h"

namespace norvane {

HostedView::HostedView(std::function<Element()> body, TextRuler& ruler, Appearance& appearance)
    : body_(std::move(body)), ruler_(ruler), appearance_(appearance) {
    appearanceChange_ = appearance_.onDidChange([this] { tellChanged(); });
}

void HostedView::invalidate() {
    tree_.reset();
    tellChanged();
}

Node& HostedView::tree() {
    if (!tree_) tree_ = body_().take();
    return *tree_;
}

Size HostedView::fittingSize() {
    return tree().measure(ruler_, {});
}

DisplayList HostedView::displayList(Size size, MonotonicInstant) {
    Node& root = tree();
    root.place(ruler_, {{}, size});
    SceneBuilder builder(Palette::of(appearance_.isDark()), size);
    builder.child(0, root);
    scene_ = std::move(builder).finish();
    DisplayList picture = scene_.picture;
    // What stands under a resting pointer may be another thing now.
    if (pointer_ || !hovered_.empty()) hover();
    return picture;
}

void HostedView::pointer(const PointerEvent& event) {
    switch (event.kind) {
        case PointerEvent::Kind::move:
            pointer_ = event.at;
            hover();
            break;
        case PointerEvent::Kind::leave:
            pointer_.reset();
            pressed_.reset();
            hover();
            break;
        case PointerEvent::Kind::press: {
            const SensitiveRegion* region = regionAt(event.at);
            pressed_ = region != nullptr ? std::optional(region->key) : std::nullopt;
            break;
        }
        case PointerEvent::Kind::release: {
            const auto pressed = std::exchange(pressed_, std::nullopt);
            const SensitiveRegion* region = regionAt(event.at);
            if (region == nullptr || pressed != region->key) break;
            const auto action = region->action;  // the action may replace the scene
            action();
            break;
        }
    }
}

bool HostedView::key(const KeyEvent&) {
    return false;
}

const SensitiveRegion* HostedView::regionAt(Point at) const {
    const auto found = std::find_if(
        scene_.regions.rbegin(), scene_.regions.rend(),
        [&](const SensitiveRegion& region) { return region.action && region.frame.contains(at); });
    return found == scene_.regions.rend() ? nullptr : &*found;
}

void HostedView::hover() {
    std::vector<SensitiveRegion> now;
    if (pointer_) {
        std::copy_if(scene_.regions.begin(), scene_.regions.end(), std::back_inserter(now),
                     [&](const SensitiveRegion& region) {
                         return region.onHover && region.frame.contains(*pointer_);
                     });
    }
    const auto isIn = [](const std::vector<SensitiveRegion>& regions, const SensitiveRegion& wanted) {
        return std::any_of(regions.begin(), regions.end(),
                           [&](const SensitiveRegion& region) { return region.key == wanted.key; });
    };
    // A handler may replace the scene, so what is over what is settled before the first is called.
    const std::vector<SensitiveRegion> before = std::exchange(hovered_, now);
    for (const SensitiveRegion& region : before) {
        if (!isIn(now, region)) region.onHover(false);
    }
    for (const SensitiveRegion& region : now) {
        if (!isIn(before, region)) region.onHover(true);
    }
}

}  // namespace norvane
