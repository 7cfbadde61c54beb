#include "platform/scripted/ScriptedWindowServer.h"

#include <algorithm>

#include "platform/scripted/ScriptedPopoverWindow.h"
#include "platform/scripted/ScriptedStatusItem.h"

namespace norvane {

std::unique_ptr<StatusItem> ScriptedWindowServer::statusItemWithLength(double points) {
    return std::make_unique<ScriptedStatusItem>(*this, points);
}

std::unique_ptr<PopoverWindow> ScriptedWindowServer::makePopoverWindow(SurfaceContent& content,
                                                                       PopoverWindowObserver& observer) {
    return std::make_unique<ScriptedPopoverWindow>(*this, content, observer);
}

std::optional<Rect> ScriptedWindowServer::visibleFrame() const {
    if (!screen) return std::nullopt;
    return screen->inset({.top = kPanelHeight, .left = 0, .bottom = 0, .right = 0});
}

std::optional<Rect> ScriptedWindowServer::buttonFrame() const {
    if (!hasItem_ || !hasPanel || !screen) return std::nullopt;
    const double width = length_ == StatusItem::kSquareLength ? kPanelHeight : length_;
    return Rect{{screen->maxX() - statusItemRightMargin - width, screen->minY()}, {width, kPanelHeight}};
}

DisplayList ScriptedWindowServer::statusItemPicture() const {
    const auto button = buttonFrame();
    if (!button || content_ == nullptr) return {};
    return content_->displayList(button->size, time_.monotonic());
}

void ScriptedWindowServer::startPanel() {
    hasPanel = true;
    panelStarted_.tell();
}

void ScriptedWindowServer::clickStatusItem() {
    if (buttonFrame() && action_) action_();
}

void ScriptedWindowServer::click(Point at) {
    const auto button = buttonFrame();
    const bool isOnButton = button && button->contains(at);
    if (isOnButton && panelKnowsPresses) {
        clickStatusItem();
        return;
    }
    ScriptedPopoverWindow* hit = nullptr;
    for (ScriptedPopoverWindow* window : shown_) {
        if (window->frame().contains(at)) hit = window;
    }
    if (hit == nullptr) {
        const auto windows = shown_;  // a window may leave when it hears of the press
        for (ScriptedPopoverWindow* window : windows) {
            const bool isStillShown = std::find(shown_.begin(), shown_.end(), window) != shown_.end();
            if (isStillShown) window->observer().windowPressedOutside();
        }
        if (isOnButton) clickStatusItem();
        return;
    }
    const Point inside{at.x - hit->frame().minX(), at.y - hit->frame().minY()};
    hit->content().pointer({PointerEvent::Kind::move, inside});
    hit->content().pointer({PointerEvent::Kind::press, inside});
    hit->content().pointer({PointerEvent::Kind::release, inside});
}

void ScriptedWindowServer::focusElsewhere() {
    ScriptedPopoverWindow* const had = key_;
    key_ = nullptr;
    if (had != nullptr) had->observer().windowLostFocus();
}

void ScriptedWindowServer::press(KeyEvent::Key key) {
    if (key_ == nullptr) return;
    if (!key_->content().key({key}) && key == KeyEvent::Key::escape) key_->observer().windowEscapePressed();
}

}  // namespace norvane
