#include "views/ScreenTest.h"

namespace norvane {
namespace {

struct Found {
    const DisplayItem* item = nullptr;
    double opacity = 0;
};

Found find(const std::vector<DisplayItem>& items, const std::string& text, double opacity) {
    for (const DisplayItem* item : flatItems(items)) {
        if (const auto* shown = std::get_if<DrawText>(&item->command)) {
            if (shown->text == text) return {item, opacity * shown->color.alpha};
        } else if (const auto* group = std::get_if<DrawGroup>(&item->command)) {
            const Found found = find(group->items, text, opacity * group->opacity);
            if (found.item != nullptr) return found;
        }
    }
    return {};
}

const AccessibleNode* find(const AccessibleNode& node, const std::string& name) {
    if (node.name == name) return &node;
    for (const AccessibleNode& child : node.children) {
        if (const AccessibleNode* found = find(child, name)) return found;
    }
    return nullptr;
}

}  // namespace

const DisplayList& ScreenTest::paint() {
    picture_ = view_.displayList(view_.fittingSize(most_), machine_.time.monotonic());
    return picture_;
}

const DisplayItem* ScreenTest::textItem(const std::string& text) const {
    return find(picture_.items, text, 1).item;
}

double ScreenTest::opacityOf(const std::string& text) const {
    return find(picture_.items, text, 1).opacity;
}

Rect ScreenTest::frameOf(const std::string& text) const {
    const DisplayItem* item = textItem(text);
    if (item == nullptr) {
        ADD_FAILURE() << "no \"" << text << "\" in\n" << printed(picture_);
        return {};
    }
    return std::get<DrawText>(item->command).frame;
}

std::optional<AccessibleNode> ScreenTest::accessible(const std::string& name) {
    const AccessibleNode tree = view_.accessibleTree();
    const AccessibleNode* found = find(tree, name);
    return found != nullptr ? std::optional(*found) : std::nullopt;
}

bool ScreenTest::perform(const std::string& name, const std::string& action) {
    const auto node = accessible(name);
    return node && view_.perform(node->key, action);
}

void ScreenTest::clickOn(const std::string& text) {
    const Rect frame = frameOf(text);
    click({frame.midX(), frame.midY()});
}

}  // namespace norvane
