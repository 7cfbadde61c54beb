#include "platform/linux/AtspiAnswers.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "platform/linux/AtspiInterfaces.h"
#include "platform/linux/AtspiText.h"

namespace norvane {
namespace {

constexpr const char* kRootName = "root";
constexpr const char* kNoPath = "/org/a11y/atspi/null";
constexpr const char* kVersionOfInterfaces = "2.1";
// All that is said is English.
constexpr const char* kLocale = "en";

// What an extent is measured from, by the numbers of AT-SPI.
constexpr std::uint32_t kFromScreen = 0;
constexpr std::uint32_t kFromParent = 2;
// Of a window, and of what is in it.
constexpr std::uint32_t kWindowLayer = 7;
constexpr std::uint32_t kWidgetLayer = 3;

int intAt(GVariant* tuple, gsize place) {
    gint32 number = 0;
    g_variant_get_child(tuple, place, "i", &number);
    return number;
}

// A coordinate. Any number may come, and no screen reaches so far.
int placeAt(GVariant* tuple, gsize place) {
    constexpr int kFarthest = 1'000'000;
    return std::clamp(intAt(tuple, place), -kFarthest, kFarthest);
}

std::uint32_t unsignedAt(GVariant* tuple, gsize place) {
    guint32 number = 0;
    g_variant_get_child(tuple, place, "u", &number);
    return number;
}

GVariant* boolean(bool value) {
    return g_variant_new("(b)", value ? TRUE : FALSE);
}

GVariant* emptyDictionary() {
    return g_variant_new_array(G_VARIANT_TYPE("{ss}"), nullptr, 0);
}

std::vector<std::string_view> interfacesOf(AtspiId id, const AtspiObject& object) {
    std::vector<std::string_view> interfaces{kAtspiAccessible};
    if (id == 0) {
        interfaces.emplace_back(kAtspiApplication);
        return interfaces;
    }
    interfaces.emplace_back(kAtspiComponent);
    if (!object.actions.empty()) interfaces.emplace_back(kAtspiAction);
    if (object.number) interfaces.emplace_back(kAtspiValue);
    if (object.isText) interfaces.emplace_back(kAtspiText);
    return interfaces;
}

GVariant* arrayOf(const std::vector<std::string_view>& texts) {
    GVariantBuilder array;
    g_variant_builder_init(&array, G_VARIANT_TYPE("as"));
    for (const std::string_view text : texts)
        g_variant_builder_add(&array, "s", std::string(text).c_str());
    return g_variant_builder_end(&array);
}

GVariant* attributesOf(const AtspiObject& object) {
    GVariantBuilder array;
    g_variant_builder_init(&array, G_VARIANT_TYPE("a{ss}"));
    if (object.isLive) {
        g_variant_builder_add(&array, "{ss}", "live", "polite");
        g_variant_builder_add(&array, "{ss}", "container-live", "polite");
    }
    if (!object.valueText.empty() && !object.isText)
        g_variant_builder_add(&array, "{ss}", "valuetext", object.valueText.c_str());
    return g_variant_builder_end(&array);
}

GVariant* pieceOf(const AtspiText::Piece& piece) {
    return g_variant_new("(sii)", piece.text.c_str(), piece.from, piece.to);
}

GVariant* extentsOf(const PixelRect& rect) {
    return g_variant_new("(iiii)", rect.x, rect.y, rect.width, rect.height);
}

}  // namespace

void AtspiAnswers::setParent(std::string name, std::string path) {
    parentName_ = std::move(name);
    parentPath_ = std::move(path);
}

std::string AtspiAnswers::pathOf(AtspiId id) {
    return std::string(kFamilyPath) + '/' + (id == 0 ? kRootName : std::to_string(id));
}

const AtspiObject* AtspiAnswers::named(std::string_view name, AtspiId& id) const {
    id = 0;
    if (name != kRootName) {
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), id);
        if (error != std::errc() || end != name.data() + name.size() || id == 0) return nullptr;
    }
    return tree_.find(id);
}

std::vector<std::string_view> AtspiAnswers::interfaces(std::string_view name) const {
    AtspiId id = 0;
    const AtspiObject* const object = named(name, id);
    return object != nullptr ? interfacesOf(id, *object) : std::vector<std::string_view>();
}

GVariant* AtspiAnswers::called(std::string_view name, std::string_view interface, std::string_view method,
                               GVariant* arguments) {
    AtspiId id = 0;
    const AtspiObject* const object = named(name, id);
    if (object == nullptr) return nullptr;
    if (interface == kAtspiAccessible) return accessible(id, *object, method, arguments);
    if (interface == kAtspiComponent) return component(id, *object, method, arguments);
    if (interface == kAtspiAction) return action(id, *object, method, arguments);
    if (interface == kAtspiText) return text(*object, method, arguments);
    if (interface == kAtspiApplication && method == "GetLocale") return g_variant_new("(s)", kLocale);
    return nullptr;
}

GVariant* AtspiAnswers::accessible(AtspiId id, const AtspiObject& object, std::string_view method,
                                   GVariant* arguments) const {
    if (method == "GetChildAtIndex") {
        const int index = intAt(arguments, 0);
        const bool isThere = index >= 0 && static_cast<std::size_t>(index) < object.children.size();
        if (!isThere) return g_variant_new("((so))", "", kNoPath);
        return g_variant_new("(@(so))", reference(object.children[static_cast<std::size_t>(index)]));
    }
    if (method == "GetChildren") {
        GVariantBuilder array;
        g_variant_builder_init(&array, G_VARIANT_TYPE("a(so)"));
        for (const AtspiId child : object.children)
            g_variant_builder_add_value(&array, reference(child));
        return g_variant_new("(a(so))", &array);
    }
    if (method == "GetIndexInParent") return g_variant_new("(i)", tree_.indexOf(id));
    if (method == "GetRelationSet")
        return g_variant_new("(@a(ua(so)))", g_variant_new_array(G_VARIANT_TYPE("(ua(so))"), nullptr, 0));
    if (method == "GetRole") return g_variant_new("(u)", static_cast<std::uint32_t>(object.role));
    if (method == "GetRoleName" || method == "GetLocalizedRoleName")
        return g_variant_new("(s)", nameOf(object.role));
    if (method == "GetState") return g_variant_new("(@au)", states(object));
    if (method == "GetAttributes") return g_variant_new("(@a{ss})", attributesOf(object));
    if (method == "GetApplication") return g_variant_new("(@(so))", reference(0));
    if (method == "GetInterfaces") return g_variant_new("(@as)", arrayOf(interfacesOf(id, object)));
    return nullptr;
}

GVariant* AtspiAnswers::component(AtspiId id, const AtspiObject& object, std::string_view method,
                                  GVariant* arguments) const {
    if (method == "Contains" || method == "GetAccessibleAtPoint") {
        const PixelRect origin = extents(object, unsignedAt(arguments, 2));
        const int x = placeAt(arguments, 0) - origin.x + object.extents.x;
        const int y = placeAt(arguments, 1) - origin.y + object.extents.y;
        if (method == "Contains") return boolean(object.extents.contains(x, y));
        const AtspiId found = tree_.at(id, x, y);
        if (found == 0) return g_variant_new("((so))", "", kNoPath);
        return g_variant_new("(@(so))", reference(found));
    }
    if (method == "GetExtents")
        return g_variant_new("(@(iiii))", extentsOf(extents(object, unsignedAt(arguments, 0))));
    if (method == "GetPosition") {
        const PixelRect rect = extents(object, unsignedAt(arguments, 0));
        return g_variant_new("(ii)", rect.x, rect.y);
    }
    if (method == "GetSize") return g_variant_new("(ii)", object.extents.width, object.extents.height);
    if (method == "GetLayer")
        return g_variant_new("(u)", object.role == AtspiRole::frame ? kWindowLayer : kWidgetLayer);
    if (method == "GetMDIZOrder") return g_variant_new("(n)", gint16{0});
    if (method == "GrabFocus") return boolean(deeds_.focus(id));
    if (method == "GetAlpha") return g_variant_new("(d)", 1.0);
    return nullptr;
}

GVariant* AtspiAnswers::action(AtspiId id, const AtspiObject& object, std::string_view method,
                               GVariant* arguments) const {
    if (method == "GetActions") {
        GVariantBuilder array;
        g_variant_builder_init(&array, G_VARIANT_TYPE("a(sss)"));
        for (const std::string& each : object.actions)
            g_variant_builder_add(&array, "(sss)", each.c_str(), "", "");
        return g_variant_new("(a(sss))", &array);
    }
    const int index = intAt(arguments, 0);
    const bool isThere = index >= 0 && static_cast<std::size_t>(index) < object.actions.size();
    if (method == "DoAction") return boolean(isThere && deeds_.act(id, static_cast<std::size_t>(index)));
    if (!isThere) return nullptr;
    if (method == "GetName" || method == "GetLocalizedName")
        return g_variant_new("(s)", object.actions[static_cast<std::size_t>(index)].c_str());
    if (method == "GetDescription" || method == "GetKeyBinding") return g_variant_new("(s)", "");
    return nullptr;
}

// Nobody types here, and nothing is selected.
GVariant* AtspiAnswers::text(const AtspiObject& object, std::string_view method, GVariant* arguments) const {
    const AtspiText text(object.name);
    if (method == "GetText")
        return g_variant_new("(s)", text.part(intAt(arguments, 0), intAt(arguments, 1)).c_str());
    if (method == "GetCharacterAtOffset") return g_variant_new("(i)", text.character(intAt(arguments, 0)));
    if (method == "GetStringAtOffset")
        return pieceOf(text.at(intAt(arguments, 0), AtspiText::unitOfGranularity(unsignedAt(arguments, 1))));
    if (method == "GetTextAtOffset")
        return pieceOf(text.at(intAt(arguments, 0), AtspiText::unitOfBoundary(unsignedAt(arguments, 1))));
    if (method == "GetTextBeforeOffset")
        return pieceOf(text.before(intAt(arguments, 0), AtspiText::unitOfBoundary(unsignedAt(arguments, 1))));
    if (method == "GetTextAfterOffset")
        return pieceOf(text.after(intAt(arguments, 0), AtspiText::unitOfBoundary(unsignedAt(arguments, 1))));
    if (method == "GetNSelections") return g_variant_new("(i)", 0);
    if (method == "SetCaretOffset") return boolean(false);
    // It is known where the text is, not where each letter is.
    if (method == "GetCharacterExtents") return extentsOf(extents(object, unsignedAt(arguments, 1)));
    if (method == "GetRangeExtents") return extentsOf(extents(object, unsignedAt(arguments, 2)));
    if (method == "GetOffsetAtPoint") return g_variant_new("(i)", -1);
    if (method == "GetAttributes" || method == "GetAttributeRun")
        return g_variant_new("(@a{ss}ii)", emptyDictionary(), 0, text.length());
    if (method == "GetDefaultAttributes" || method == "GetDefaultAttributeSet")
        return g_variant_new("(@a{ss})", emptyDictionary());
    return nullptr;
}

GVariant* AtspiAnswers::read(std::string_view name, std::string_view interface,
                             std::string_view property) const {
    AtspiId id = 0;
    const AtspiObject* const object = named(name, id);
    if (object == nullptr) return nullptr;
    if (interface == kAtspiAccessible) {
        if (property == "Name") return g_variant_new_string(object->name.c_str());
        if (property == "Description") return g_variant_new_string(object->description.c_str());
        if (property == "Parent") return parentOf(id, *object);
        if (property == "ChildCount")
            return g_variant_new_int32(static_cast<gint32>(object->children.size()));
        if (property == "Locale") return g_variant_new_string(kLocale);
    } else if (interface == kAtspiApplication) {
        if (property == "ToolkitName") return g_variant_new_string("Norvane");
        if (property == "Version" || property == "AtspiVersion")
            return g_variant_new_string(kVersionOfInterfaces);
        if (property == "Id") return g_variant_new_int32(applicationId_);
    } else if (interface == kAtspiAction && property == "NActions") {
        return g_variant_new_int32(static_cast<gint32>(object->actions.size()));
    } else if (interface == kAtspiValue && object->number) {
        if (property == "MinimumValue") return g_variant_new_double(object->number->least);
        if (property == "MaximumValue") return g_variant_new_double(object->number->most);
        if (property == "MinimumIncrement") return g_variant_new_double(object->number->step);
        if (property == "CurrentValue") return g_variant_new_double(object->number->now);
        if (property == "Text") return g_variant_new_string(object->valueText.c_str());
    } else if (interface == kAtspiText) {
        if (property == "CharacterCount") return g_variant_new_int32(AtspiText(object->name).length());
        if (property == "CaretOffset") return g_variant_new_int32(-1);
    }
    return nullptr;
}

bool AtspiAnswers::write(std::string_view name, std::string_view interface, std::string_view property,
                         GVariant* value) {
    AtspiId id = 0;
    const AtspiObject* const object = named(name, id);
    if (object == nullptr) return false;
    if (interface == kAtspiApplication && property == "Id") {
        applicationId_ = g_variant_get_int32(value);
        return true;
    }
    return interface == kAtspiValue && property == "CurrentValue" &&
           deeds_.setValue(id, g_variant_get_double(value));
}

GVariant* AtspiAnswers::reference(AtspiId id) const {
    return g_variant_new("(so)", busName_.c_str(), pathOf(id).c_str());
}

GVariant* AtspiAnswers::parentOf(AtspiId id, const AtspiObject& object) const {
    if (id != 0) return reference(object.parent);
    if (parentPath_.empty()) return g_variant_new("(so)", "", kNoPath);
    return g_variant_new("(so)", parentName_.c_str(), parentPath_.c_str());
}

GVariant* AtspiAnswers::states(const AtspiObject& object) const {
    const auto words = object.states.words();
    return g_variant_new_fixed_array(G_VARIANT_TYPE_UINT32, words.data(), words.size(), sizeof words[0]);
}

PixelRect AtspiAnswers::extents(const AtspiObject& object, std::uint32_t relativeTo) const {
    if (relativeTo == kFromScreen) return object.extents;
    const AtspiObject* around = tree_.find(object.parent);
    while (relativeTo != kFromParent && around != nullptr && around->role != AtspiRole::frame &&
           around->role != AtspiRole::application)
        around = tree_.find(around->parent);
    if (object.role == AtspiRole::frame) around = relativeTo == kFromParent ? nullptr : &object;
    return around != nullptr ? object.extents.moved(-around->extents.x, -around->extents.y) : object.extents;
}

GVariant* AtspiAnswers::cacheItem(AtspiId id) const {
    const AtspiObject* const object = tree_.find(id);
    if (object == nullptr) return nullptr;
    return g_variant_new("(@(so)@(so)@(so)ii@assus@au)", reference(id), reference(0), parentOf(id, *object),
                         tree_.indexOf(id), static_cast<gint32>(object->children.size()),
                         arrayOf(interfacesOf(id, *object)), object->name.c_str(),
                         static_cast<guint32>(object->role), object->description.c_str(), states(*object));
}

GVariant* AtspiAnswers::cacheItems() const {
    GVariantBuilder array;
    g_variant_builder_init(&array, G_VARIANT_TYPE("a((so)(so)(so)iiassusau)"));
    for (const auto& [id, object] : tree_.objects())
        g_variant_builder_add_value(&array, cacheItem(id));
    return g_variant_new("(a((so)(so)(so)iiassusau))", &array);
}

}  // namespace norvane
