#include "platform/linux/AtspiTree.h"

#include <glib.h>
#include <algorithm>
#include <utility>

namespace norvane {
namespace {

using Kind = AtspiEvent::Kind;

constexpr const char* kOwnName = "Norvane";
constexpr const char* kItemName = "Norvane status item";

// What a surface is called by: its first heading.
const std::string* headingIn(const AccessibleNode& node) {
    if (node.role == AccessibleRole::heading) return &node.name;
    for (const AccessibleNode& child : node.children) {
        if (const std::string* const found = headingIn(child)) return found;
    }
    return nullptr;
}

// All that is said in a tree, in one line.
void addTexts(const AccessibleNode& node, std::string& line) {
    if (node.role == AccessibleRole::text) {
        if (!line.empty()) line += ", ";
        line += node.value.empty() ? node.name : node.name + ' ' + node.value;
    }
    for (const AccessibleNode& child : node.children)
        addTexts(child, line);
}

PixelRect placeOf(const Rect& frame, const AtspiTree::Surface& surface) {
    return pixelsCovering(frame, surface.scale).moved(surface.frame.x, surface.frame.y);
}

int lengthOf(const std::string& text) {
    return static_cast<int>(g_utf8_strlen(text.c_str(), -1));
}

bool isAmong(const std::vector<AtspiId>& ids, AtspiId id) {
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

// Those of the one that are in the other as well.
std::vector<AtspiId> common(const std::vector<AtspiId>& ids, const std::vector<AtspiId>& others) {
    std::vector<AtspiId> both;
    std::copy_if(ids.begin(), ids.end(), std::back_inserter(both),
                 [&](AtspiId id) { return isAmong(others, id); });
    return both;
}

}  // namespace

// Makes the objects of one update.
class AtspiTree::Builder {
 public:
    explicit Builder(AtspiTree& tree) : tree_(tree) {
        made_[0] = AtspiObject{.role = AtspiRole::application, .name = kOwnName};
    }

    void add(const Surface& surface) {
        AtspiObject frame{.role = AtspiRole::frame};
        const std::string* const heading = headingIn(surface.tree);
        frame.name = surface.isButton ? kItemName : heading != nullptr ? *heading : kOwnName;
        for (const AtspiState state :
             {AtspiState::enabled, AtspiState::sensitive, AtspiState::visible, AtspiState::showing})
            frame.states.set(state);
        frame.states.set(AtspiState::active, surface.hasKeyboard);
        frame.extents = surface.frame;
        const AtspiId id = put(std::move(frame), 0, surface, "");
        if (surface.isButton) {
            addButton(id, surface);
        } else {
            for (const AccessibleNode& child : surface.tree.children)
                add(child, id, surface, surface.frame);
        }
    }

    // Replaces the objects of before.
    std::map<AtspiId, AtspiObject> finish() {
        tree_.ids_ = std::move(ids_);
        return std::exchange(tree_.objects_, std::move(made_));
    }

 private:
    void addButton(AtspiId frame, const Surface& surface) {
        AccessibleNode button;
        button.role = AccessibleRole::button;
        button.name = kOwnName;
        addTexts(surface.tree, button.value);
        button.actions = {"press"};
        button.frame = surface.tree.frame;
        add(button, frame, surface, surface.frame);
    }

    void add(const AccessibleNode& node, AtspiId parent, const Surface& surface, const PixelRect& seen) {
        AtspiObject object = AtspiObject::of(node);
        object.extents = placeOf(node.frame, surface);
        const PixelRect shown = object.extents.intersection(seen);
        object.states.set(AtspiState::showing, !shown.isEmpty());
        const AtspiId id = put(std::move(object), parent, surface, node.key);
        // Only an area cuts off what is in it.
        const bool cuts = node.role == AccessibleRole::scrollArea;
        for (const AccessibleNode& child : node.children)
            add(child, id, surface, cuts ? shown : seen);
    }

    AtspiId put(AtspiObject object, AtspiId parent, const Surface& surface, const std::string& key) {
        std::string identity = std::to_string(surface.number) + ' ' +
                               std::to_string(static_cast<std::uint32_t>(object.role)) + ' ' + key;
        while (ids_.contains(identity))
            identity += " again";
        const auto before = tree_.ids_.find(identity);
        const AtspiId id = before != tree_.ids_.end() ? before->second : ++tree_.lastId_;
        ids_.emplace(std::move(identity), id);
        object.parent = parent;
        object.surface = surface.number;
        made_[parent].children.push_back(id);
        made_[id] = std::move(object);
        return id;
    }

    AtspiTree& tree_;
    std::map<AtspiId, AtspiObject> made_;
    std::map<std::string, AtspiId, std::less<>> ids_;
};

namespace {

// Tells of the differences between two sets of objects.
class Comparison {
 public:
    using Objects = std::map<AtspiId, AtspiObject>;

    Comparison(const Objects& before, const Objects& now) : before_(before), now_(now) {}

    std::vector<AtspiEvent> events() {
        for (const auto& [id, object] : before_) {
            if (!now_.contains(id)) tellOfDeparture(id, object);
        }
        for (const auto& [id, object] : now_) {
            if (!before_.contains(id)) tell({.kind = Kind::appeared, .source = id});
        }
        for (const auto& [id, object] : now_)
            tellOfChildren(id, object);
        for (const auto& [id, object] : now_) {
            const auto before = before_.find(id);
            if (before != before_.end()) {
                tellOfTexts(id, before->second, object);
                tellOfStates(id, before->second.states, object);
            } else if (object.role == AtspiRole::frame) {
                tell({.kind = Kind::window, .source = id, .member = "Create", .value = object.name});
                if (object.states.has(AtspiState::active))
                    tellOfState(id, AtspiState::active, "active", object);
            } else if (object.states.has(AtspiState::focused)) {
                tellOfState(id, AtspiState::focused, "focused", object);
            }
        }
        // The last word is on what has the keyboard now.
        std::stable_partition(events_.begin(), events_.end(), [](const AtspiEvent& event) {
            return !(event.detail == "focused" && event.first == 1);
        });
        return std::move(events_);
    }

 private:
    void tell(AtspiEvent event) { events_.push_back(std::move(event)); }

    void tellOfDeparture(AtspiId id, const AtspiObject& object) {
        if (object.role == AtspiRole::frame) {
            if (object.states.has(AtspiState::active))
                tell({.kind = Kind::window, .source = id, .member = "Deactivate", .value = object.name});
            tell({.kind = Kind::window, .source = id, .member = "Destroy", .value = object.name});
        }
        const auto parent = before_.find(object.parent);
        if (parent != before_.end() && now_.contains(object.parent))
            tellOfChild(object.parent, "remove", parent->second.children, id);
        tell({.kind = Kind::disappeared, .source = id});
    }

    void tellOfChildren(AtspiId id, const AtspiObject& object) {
        const auto before = before_.find(id);
        if (before == before_.end()) return;  // whoever hears of it asks for them
        const std::vector<AtspiId>& was = before->second.children;
        const std::vector<AtspiId> kept = common(was, object.children);
        // Nothing is said of those that keep their order; others come anew, all together.
        const bool isInOrder = kept == common(object.children, was);
        if (!isInOrder) {
            for (auto child = kept.rbegin(); child != kept.rend(); ++child)
                tellOfChild(id, "remove", was, *child);
        }
        for (const AtspiId child : object.children) {
            if (!isInOrder || !isAmong(was, child)) tellOfChild(id, "add", object.children, child);
        }
    }

    void tellOfChild(AtspiId parent, const char* what, const std::vector<AtspiId>& among, AtspiId child) {
        const auto index = std::find(among.begin(), among.end(), child) - among.begin();
        tell({.source = parent,
              .member = "ChildrenChanged",
              .detail = what,
              .first = static_cast<int>(index),
              .value = child});
    }

    void tellOfTexts(AtspiId id, const AtspiObject& was, const AtspiObject& is) {
        if (was.name != is.name) {
            property(id, "accessible-name", is.name);
            if (is.isText) {
                text(id, "delete", was.name);
                text(id, "insert", is.name);
            }
            if (is.isLive) {
                constexpr int kPolitely = 1;
                tell({.source = id, .member = "Announcement", .first = kPolitely, .value = is.name});
            }
        }
        const bool isFollowed = !is.states.has(AtspiState::transient);
        if (was.description != is.description && isFollowed)
            property(id, "accessible-description", is.description);
        if (is.number && (!was.number || was.number->now != is.number->now))
            tell({.source = id,
                  .member = "PropertyChange",
                  .detail = "accessible-value",
                  .value = is.number->now});
    }

    void property(AtspiId id, const char* name, const std::string& value) {
        tell({.source = id, .member = "PropertyChange", .detail = name, .value = value});
    }
    void text(AtspiId id, const char* what, const std::string& text) {
        tell(
            {.source = id, .member = "TextChanged", .detail = what, .second = lengthOf(text), .value = text});
    }

    void tellOfStates(AtspiId id, const AtspiStates& was, const AtspiObject& is) {
        for (const auto& [state, name] : kChangingStates) {
            if (is.states.has(state) != was.has(state)) tellOfState(id, state, name, is);
        }
    }

    void tellOfState(AtspiId id, AtspiState state, const char* name, const AtspiObject& is) {
        const bool isSet = is.states.has(state);
        if (state == AtspiState::active)
            tell({.kind = Kind::window,
                  .source = id,
                  .member = isSet ? "Activate" : "Deactivate",
                  .value = is.name});
        tell({.source = id, .member = "StateChanged", .detail = name, .first = isSet ? 1 : 0});
    }

    const Objects& before_;
    const Objects& now_;
    std::vector<AtspiEvent> events_;
};

}  // namespace

AtspiTree::AtspiTree() {
    update({});
}

std::vector<AtspiEvent> AtspiTree::update(const std::vector<Surface>& surfaces) {
    Builder builder(*this);
    for (const Surface& surface : surfaces)
        builder.add(surface);
    const std::map<AtspiId, AtspiObject> before = builder.finish();
    return Comparison(before, objects_).events();
}

const AtspiObject* AtspiTree::find(AtspiId id) const {
    const auto found = objects_.find(id);
    return found != objects_.end() ? &found->second : nullptr;
}

int AtspiTree::indexOf(AtspiId id) const {
    const AtspiObject* const object = find(id);
    if (object == nullptr || id == 0) return -1;
    const std::vector<AtspiId>& siblings = objects_.at(object->parent).children;
    return static_cast<int>(std::find(siblings.begin(), siblings.end(), id) - siblings.begin());
}

AtspiId AtspiTree::at(AtspiId within, int x, int y) const {
    const AtspiObject* const object = find(within);
    if (object == nullptr) return 0;
    // The last one is in front.
    for (auto child = object->children.rbegin(); child != object->children.rend(); ++child) {
        if (const AtspiId found = at(*child, x, y)) return found;
    }
    const bool isThere = within != 0 && object->states.has(AtspiState::showing);
    return isThere && object->extents.contains(x, y) ? within : 0;
}

}  // namespace norvane
