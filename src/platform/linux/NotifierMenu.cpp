#include "platform/linux/NotifierMenu.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <set>
#include <span>
#include <string>
#include <utility>

#include "platform/linux/GVariantPointer.h"
#include "platform/Utf8.h"

namespace norvane {
namespace {

constexpr const char* kInterface = "com.canonical.dbusmenu";

constexpr const char* kMenuInterface = R"(<node><interface name='com.canonical.dbusmenu'>
    <property name='Version' type='u' access='read'/>
    <property name='TextDirection' type='s' access='read'/>
    <property name='Status' type='s' access='read'/>
    <property name='IconThemePath' type='as' access='read'/>
    <method name='GetLayout'>
        <arg name='parentId' type='i'/><arg name='recursionDepth' type='i'/>
        <arg name='propertyNames' type='as'/>
        <arg name='revision' type='u' direction='out'/>
        <arg name='layout' type='(ia{sv}av)' direction='out'/></method>
    <method name='GetGroupProperties'>
        <arg name='ids' type='ai'/><arg name='propertyNames' type='as'/>
        <arg name='properties' type='a(ia{sv})' direction='out'/></method>
    <method name='GetProperty'>
        <arg name='id' type='i'/><arg name='name' type='s'/>
        <arg name='value' type='v' direction='out'/></method>
    <method name='Event'>
        <arg name='id' type='i'/><arg name='eventId' type='s'/><arg name='data' type='v'/>
        <arg name='timestamp' type='u'/></method>
    <method name='EventGroup'>
        <arg name='events' type='a(isvu)'/>
        <arg name='idErrors' type='ai' direction='out'/></method>
    <method name='AboutToShow'>
        <arg name='id' type='i'/>
        <arg name='needUpdate' type='b' direction='out'/></method>
    <method name='AboutToShowGroup'>
        <arg name='ids' type='ai'/>
        <arg name='updatesNeeded' type='ai' direction='out'/>
        <arg name='idErrors' type='ai' direction='out'/></method>
    <signal name='ItemsPropertiesUpdated'>
        <arg name='updated' type='a(ia{sv})'/><arg name='removed' type='a(ias)'/></signal>
    <signal name='LayoutUpdated'><arg name='revision' type='u'/><arg name='parent' type='i'/></signal>
    <signal name='ItemActivationRequested'>
        <arg name='id' type='i'/><arg name='timestamp' type='u'/></signal>
    </interface></node>)";

// Other events tell of the menu coming and going.
constexpr std::string_view kClicked = "clicked";

constexpr std::array kItemProperties{"children-display", "label", "enabled", "visible"};

GVariant* read(std::string_view property) {
    if (property == "Version") return g_variant_new_uint32(3);
    if (property == "TextDirection") return g_variant_new_string("ltr");
    if (property == "Status") return g_variant_new_string("normal");
    return g_variant_new_strv(nullptr, 0);
}

// An underscore marks the letter that a command is chosen with, two stand for one.
std::string label(const std::string& title) {
    std::string text;
    for (const char each : repairedUtf8(title)) {
        if (each == '\0') continue;
        text += each;
        if (each == '_') text += each;
    }
    return text;
}

std::int32_t number(GVariant* tuple, gsize place) {
    gint32 value = 0;
    g_variant_get_child(tuple, place, "i", &value);
    return value;
}

std::span<const gint32> numbers(GVariant* array) {
    gsize count = 0;
    const auto* const first =
        static_cast<const gint32*>(g_variant_get_fixed_array(array, &count, sizeof(gint32)));
    return {first, count};
}

GVariant* list(std::span<const gint32> numbers) {
    return g_variant_new_fixed_array(G_VARIANT_TYPE_INT32, numbers.data(), numbers.size(), sizeof(gint32));
}

// No names stand for all.
bool includes(GVariant* names, std::string_view name) {
    const gsize count = g_variant_n_children(names);
    if (count == 0) return true;
    for (gsize each = 0; each < count; ++each) {
        const GVariantPointer child(g_variant_get_child_value(names, each));
        if (g_variant_get_string(child.get(), nullptr) == name) return true;
    }
    return false;
}

}  // namespace

NotifierMenu::NotifierMenu(BusConnection& sessionBus, MainQueue& mainQueue)
    : bus_(sessionBus),
      mainQueue_(mainQueue),
      items_(std::make_shared<std::vector<StatusMenuItem>>()),
      object_(bus_.exportObject({.path = kPath,
                                 .description = kMenuInterface,
                                 .called = [this](std::string_view method,
                                                  GVariant* arguments) { return called(method, arguments); },
                                 .read = read})) {}

void NotifierMenu::setItems(std::vector<StatusMenuItem> items) {
    const bool isSame =
        std::equal(items.begin(), items.end(), items_->begin(), items_->end(),
                   [](const auto& one, const auto& other) { return one.title == other.title; });
    items_ = std::make_shared<std::vector<StatusMenuItem>>(std::move(items));
    if (!isSame) bus_.emit(kPath, kInterface, "LayoutUpdated", g_variant_new("(ui)", ++revision_, kRoot));
}

bool NotifierMenu::isThere(std::int32_t id) const {
    return id >= kRoot && static_cast<std::size_t>(id) <= items_->size();
}

GVariant* NotifierMenu::called(std::string_view method, GVariant* arguments) {
    if (method == "GetLayout") return layout(arguments);
    if (method == "GetGroupProperties") return groupProperties(arguments);
    if (method == "GetProperty") return property(arguments);
    if (method == "Event") return event(arguments);
    if (method == "EventGroup") return eventGroup(arguments);
    if (method == "AboutToShow") return aboutToShow(arguments);
    return aboutToShowGroup(arguments);
}

GVariant* NotifierMenu::layout(GVariant* arguments) const {
    const std::int32_t parent = number(arguments, 0);
    if (!isThere(parent)) return nullptr;
    const GVariantPointer names(g_variant_get_child_value(arguments, 2));
    return g_variant_new("(u@(ia{sv}av))", revision_, node(parent, number(arguments, 1), names.get()));
}

// Below it so many levels, or all for a number below 0.
GVariant* NotifierMenu::node(std::int32_t id, std::int32_t depth, GVariant* names) const {
    GVariantBuilder children;
    g_variant_builder_init(&children, G_VARIANT_TYPE("av"));
    if (id == kRoot && depth != 0) {
        for (std::int32_t child = 1; isThere(child); ++child)
            g_variant_builder_add(&children, "v", node(child, depth - 1, names));
    }
    return g_variant_new("(i@a{sv}av)", id, properties(id, names), &children);
}

GVariant* NotifierMenu::properties(std::int32_t id, GVariant* names) const {
    GVariantBuilder found;
    g_variant_builder_init(&found, G_VARIANT_TYPE_VARDICT);
    for (const char* const name : kItemProperties) {
        GVariant* const value = includes(names, name) ? valueOf(id, name) : nullptr;
        if (value != nullptr) g_variant_builder_add(&found, "{sv}", name, value);
    }
    return g_variant_builder_end(&found);
}

GVariant* NotifierMenu::valueOf(std::int32_t id, std::string_view name) const {
    if (id == kRoot) return name == "children-display" ? g_variant_new_string("submenu") : nullptr;
    if (name == "label") {
        return g_variant_new_string(label((*items_)[static_cast<std::size_t>(id - 1)].title).c_str());
    }
    return name == "enabled" || name == "visible" ? g_variant_new_boolean(TRUE) : nullptr;
}

GVariant* NotifierMenu::groupProperties(GVariant* arguments) const {
    const GVariantPointer ids(g_variant_get_child_value(arguments, 0));
    const GVariantPointer names(g_variant_get_child_value(arguments, 1));
    const auto wanted = numbers(ids.get());
    GVariantBuilder found;
    g_variant_builder_init(&found, G_VARIANT_TYPE("a(ia{sv})"));
    // Each once, however often it is asked for.
    for (std::int32_t id = kRoot; isThere(id); ++id) {
        if (wanted.empty() || std::find(wanted.begin(), wanted.end(), id) != wanted.end()) {
            g_variant_builder_add(&found, "(i@a{sv})", id, properties(id, names.get()));
        }
    }
    return g_variant_new("(a(ia{sv}))", &found);
}

GVariant* NotifierMenu::property(GVariant* arguments) const {
    const std::int32_t id = number(arguments, 0);
    const gchar* name = nullptr;
    g_variant_get_child(arguments, 1, "&s", &name);
    GVariant* const value = isThere(id) ? valueOf(id, name) : nullptr;
    return value != nullptr ? g_variant_new("(v)", value) : nullptr;
}

GVariant* NotifierMenu::event(GVariant* arguments) {
    const std::int32_t id = number(arguments, 0);
    const gchar* type = nullptr;
    g_variant_get_child(arguments, 1, "&s", &type);
    if (!isThere(id)) return nullptr;
    if (type == kClicked) click(id);
    return g_variant_new_tuple(nullptr, 0);
}

GVariant* NotifierMenu::eventGroup(GVariant* arguments) {
    const GVariantPointer events(g_variant_get_child_value(arguments, 0));
    std::set<std::int32_t> clicked;
    std::set<std::int32_t> unknown;
    bool isAnyThere = false;
    const gsize count = g_variant_n_children(events.get());
    for (gsize each = 0; each < count; ++each) {
        const GVariantPointer event(g_variant_get_child_value(events.get(), each));
        const std::int32_t id = number(event.get(), 0);
        const gchar* type = nullptr;
        g_variant_get_child(event.get(), 1, "&s", &type);
        if (!isThere(id)) {
            unknown.insert(id);
        } else {
            isAnyThere = true;
            if (type == kClicked && clicked.insert(id).second) click(id);  // once, however often it is told
        }
    }
    if (count > 0 && !isAnyThere) return nullptr;
    const std::vector<gint32> errors(unknown.begin(), unknown.end());
    return g_variant_new("(@ai)", list(errors));
}

GVariant* NotifierMenu::aboutToShow(GVariant* arguments) const {
    return isThere(number(arguments, 0)) ? g_variant_new("(b)", FALSE) : nullptr;
}

GVariant* NotifierMenu::aboutToShowGroup(GVariant* arguments) const {
    const GVariantPointer ids(g_variant_get_child_value(arguments, 0));
    const auto shown = numbers(ids.get());
    std::vector<gint32> unknown;
    std::copy_if(shown.begin(), shown.end(), std::back_inserter(unknown),
                 [this](std::int32_t id) { return !isThere(id); });
    if (!shown.empty() && unknown.size() == shown.size()) return nullptr;
    return g_variant_new("(@ai@ai)", list({}), list(unknown));
}

void NotifierMenu::click(std::int32_t id) {
    if (id == kRoot) return;
    mainQueue_.async([items = std::weak_ptr(items_), place = static_cast<std::size_t>(id - 1)] {
        const auto alive = items.lock();
        if (!alive) return;
        if (const auto action = (*alive)[place].action) action();
    });
}

}  // namespace norvane
