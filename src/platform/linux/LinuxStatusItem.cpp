#include "platform/linux/LinuxStatusItem.h"

namespace norvane {

LinuxStatusItem::LinuxStatusItem(const Desk& desk, BusConnection& sessionBus, double length)
    : desk_(desk),
      hosts_(desk, sessionBus,
             {.clicked = [this] { clicked(); },
              .changed = [this] { hostChanged(); },
              .placed = [this] { placed(); }}) {
    hosts_.setLength(length);
    accessible_ = desk_.accessibleSurfaces.add({.content = [this] { return content_; },
                                                .frame = [this] { return frameOnScreen(); },
                                                .hasKeyboard = [] { return false; },
                                                .press = [this] { clicked(); }});
}

// The action may end the item.
void LinuxStatusItem::clicked() const {
    if (const auto action = action_) action();
}

void LinuxStatusItem::placed() {
    desk_.accessibleSurfaces.changed();
    appeared_.tell();
}

// A panel that shows the item by itself tells of it by itself.
std::optional<PixelRect> LinuxStatusItem::frameOnScreen() const {
    const auto frame = knowsItsPresses() ? buttonFrame() : std::nullopt;
    return frame ? std::optional(pixelsCovering(*frame, desk_.screen.scale())) : std::nullopt;
}

void LinuxStatusItem::hostChanged() {
    StatusItemHost* const host = hosts_.host();
    if (host == nullptr) return;
    host->setContent(content_);
    host->setToolTip(toolTip_);
    host->setContextMenu(menu_);
}

void LinuxStatusItem::setContent(SurfaceContent* content) {
    content_ = content;
    desk_.accessibleSurfaces.changed();
    if (StatusItemHost* const host = hosts_.host()) host->setContent(content);
}

void LinuxStatusItem::setToolTip(const std::string& text) {
    toolTip_ = text;
    if (StatusItemHost* const host = hosts_.host()) host->setToolTip(text);
}

void LinuxStatusItem::setContextMenu(std::vector<StatusMenuItem> items) {
    menu_ = std::move(items);
    if (StatusItemHost* const host = hosts_.host()) host->setContextMenu(menu_);
}

std::optional<Rect> LinuxStatusItem::buttonFrame() const {
    const StatusItemHost* const host = hosts_.host();
    return host != nullptr ? host->buttonFrame() : std::nullopt;
}

bool LinuxStatusItem::knowsItsPresses() const {
    const StatusItemHost* const host = hosts_.host();
    return host == nullptr || host->knowsItsPresses();
}

}  // namespace norvane
