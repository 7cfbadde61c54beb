#include "views/HostedView.h"

#include <algorithm>
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
    return scene_.picture;
}

void HostedView::pointer(const PointerEvent& event) {
    switch (event.kind) {
        case PointerEvent::Kind::move:
            hover(event.at);
            break;
        case PointerEvent::Kind::leave:
            leave();
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

void HostedView::hover(Point at) {
    std::vector<std::string> now;
    std::vector<std::function<void()>> changes;  // called last: a handler may replace the scene
    for (const SensitiveRegion& region : scene_.regions) {
        if (!region.onHover) continue;
        const bool isOver = region.frame.contains(at);
        const bool wasOver = std::find(hovered_.begin(), hovered_.end(), region.key) != hovered_.end();
        if (isOver) now.push_back(region.key);
        if (isOver != wasOver) changes.emplace_back([handler = region.onHover, isOver] { handler(isOver); });
    }
    hovered_ = std::move(now);
    for (const auto& change : changes)
        change();
}

void HostedView::leave() {
    constexpr Point kNowhere{-1e9, -1e9};
    hover(kNowhere);
    pressed_.reset();
}

}  // namespace norvane
