#include "platform/linux/LinuxStatusItem.h"

namespace norvane {

LinuxStatusItem::LinuxStatusItem(double length, const MakeHost& makeHost) : length_(length) {
    setHost(makeHost);
}

void LinuxStatusItem::setHost(const MakeHost& makeHost) {
    host_.reset();  // gives the content up before the next one takes it
    host_ = makeHost([this] {
        // The action may end the item.
        if (const auto action = action_) action();
    });
    host_->setLength(length_);
    host_->setContent(content_);
    host_->setToolTip(toolTip_);
    host_->setContextMenu(menu_);
}

void LinuxStatusItem::setLength(double points) {
    length_ = points;
    host_->setLength(points);
}

void LinuxStatusItem::setContent(SurfaceContent* content) {
    content_ = content;
    host_->setContent(content);
}

void LinuxStatusItem::setToolTip(const std::string& text) {
    toolTip_ = text;
    host_->setToolTip(text);
}

void LinuxStatusItem::setContextMenu(std::vector<StatusMenuItem> items) {
    menu_ = std::move(items);
    host_->setContextMenu(menu_);
}

}  // namespace norvane
