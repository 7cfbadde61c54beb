#include "platform/linux/AtspiApplication.h"

#include <cmath>
#include <memory>
#include <utility>

#include "platform/linux/AtspiInterfaces.h"
#include "platform/linux/GVariantPointer.h"

namespace norvane {
namespace {

constexpr const char* kRegistry = "org.a11y.atspi.Registry";
constexpr const char* kDesktopPath = "/org/a11y/atspi/accessible/root";
constexpr const char* kSocket = "org.a11y.atspi.Socket";
constexpr const char* kCachePath = "/org/a11y/atspi/cache";
constexpr const char* kCache = "org.a11y.atspi.Cache";
constexpr const char* kObjectEvent = "org.a11y.atspi.Event.Object";
constexpr const char* kWindowEvent = "org.a11y.atspi.Event.Window";

// Nobody means so many steps at once.
constexpr int kMostSteps = 1000;

}  // namespace

AtspiApplication::AtspiApplication(BusConnection& accessibilityBus, MainQueue& mainQueue,
                                   const MonotonicClock& clock, AccessibleSurfaces& surfaces,
                                   std::function<double()> scale)
    : bus_(accessibilityBus),
      mainQueue_(mainQueue),
      surfaces_(surfaces),
      scale_(std::move(scale)),
      answers_(tree_, {.act = [this](AtspiId id, std::size_t action) { return act(id, action); },
                       .focus = [this](AtspiId id) { return focus(id); },
                       .setValue = [this](AtspiId id, double value) { return setValue(id, value); }}),
      looking_(mainQueue, clock, kPause, [this] { return look(); }) {
    family_ = bus_.exportFamily(
        {.path = AtspiAnswers::kFamilyPath,
         .description = kAtspiDescription,
         .interfaces = [this](std::string_view name) { return answers_.interfaces(name); },
         .called = [this](
                       std::string_view name, std::string_view interface, std::string_view method,
                       GVariant* arguments) { return answers_.called(name, interface, method, arguments); },
         .read = [this](std::string_view name, std::string_view interface,
                        std::string_view property) { return answers_.read(name, interface, property); },
         .write = [this](std::string_view name, std::string_view interface, std::string_view property,
                         GVariant* value) { return answers_.write(name, interface, property, value); }});
    cache_ =
        bus_.exportObject({.path = kCachePath,
                           .description = kAtspiCacheDescription,
                           .called = [this](std::string_view, GVariant*) { return answers_.cacheItems(); },
                           .read = [](std::string_view) -> GVariant* { return nullptr; }});
    changes_ = surfaces_.onChange([this] { looking_.request(); });
    connection_ = bus_.onStateChange([this](BusConnection::State state) {
        if (state == BusConnection::State::connected) join();
    });
    registry_ = bus_.onOwnerChange(kRegistry, [this](bool hasOwner) {
        // The question itself may have started the registry.
        if (hasOwner && !isJoined_ && !joining_) join();
        if (!hasOwner) isJoined_ = false;
    });
    look();
    if (bus_.state() == BusConnection::State::connected) join();
}

void AtspiApplication::join() {
    isJoined_ = false;
    answers_.setBusName(bus_.uniqueName());
    joining_ = bus_.call({.name = kRegistry,
                          .path = kDesktopPath,
                          .interface = kSocket,
                          .method = "Embed",
                          .parameters = g_variant_new("(@(so))", answers_.reference(0)),
                          .answerType = G_VARIANT_TYPE("((so))")},
                         [this](GVariant* answer, const GError*) {
                             joining_.cancel();
                             if (answer == nullptr) return;  // there may be another registry
                             isJoined_ = true;
                             const gchar* name = nullptr;
                             const gchar* path = nullptr;
                             g_variant_get(answer, "((&s&o))", &name, &path);
                             answers_.setParent(name, path);
                         });
}

bool AtspiApplication::look() {
    std::vector<AtspiTree::Surface> shown;
    for (const auto& [number, surface] : surfaces_.all()) {
        const auto frame = surface.frame();
        SurfaceContent* const content = surface.content();
        if (!frame || content == nullptr) continue;
        shown.push_back({.number = number,
                         .tree = content->accessibleTree(),
                         .frame = *frame,
                         .scale = scale_(),
                         .hasKeyboard = surface.hasKeyboard(),
                         .isButton = surface.press != nullptr});
    }
    const std::vector<AtspiEvent> events = tree_.update(shown);
    for (const AtspiEvent& event : events)
        tell(event);
    return true;
}

void AtspiApplication::tell(const AtspiEvent& event) {
    if (event.kind == AtspiEvent::Kind::appeared) {
        bus_.emit(kCachePath, kCache, "AddAccessible",
                  g_variant_new("(@((so)(so)(so)iiassusau))", answers_.cacheItem(event.source)));
        return;
    }
    if (event.kind == AtspiEvent::Kind::disappeared) {
        bus_.emit(kCachePath, kCache, "RemoveAccessible",
                  g_variant_new("(@(so))", answers_.reference(event.source)));
        return;
    }
    GVariant* value = nullptr;
    if (const auto* text = std::get_if<std::string>(&event.value)) {
        value = g_variant_new_string(text->c_str());
    } else if (const auto* number = std::get_if<double>(&event.value)) {
        value = g_variant_new_double(*number);
    } else if (const auto* id = std::get_if<AtspiId>(&event.value)) {
        value = answers_.reference(*id);
    } else {
        value = g_variant_new_int32(0);
    }
    GVariant* const properties = g_variant_new_array(G_VARIANT_TYPE("{sv}"), nullptr, 0);
    bus_.emit(
        AtspiAnswers::pathOf(event.source).c_str(),
        event.kind == AtspiEvent::Kind::window ? kWindowEvent : kObjectEvent, event.member,
        g_variant_new("(siiv@a{sv})", event.detail.c_str(), event.first, event.second, value, properties));
}

// What is asked for is done after the answer: it may end the surface, or all of us.
void AtspiApplication::later(std::function<void()> deed) {
    mainQueue_.async([life = std::weak_ptr(life_), deed = std::move(deed)] {
        if (!life.expired()) deed();
    });
}

bool AtspiApplication::act(AtspiId id, std::size_t action) {
    const AtspiObject* const object = tree_.find(id);
    if (object == nullptr || action >= object->actions.size()) return false;
    later([this, surface = object->surface, key = object->key, name = object->actions[action]] {
        const auto all = surfaces_.all();
        const auto found = all.find(surface);
        if (found == all.end()) return;
        if (found->second.press) {
            found->second.press();
        } else if (SurfaceContent* const content = found->second.content()) {
            content->perform(key, name);
        }
    });
    return true;
}

bool AtspiApplication::focus(AtspiId id) {
    const AtspiObject* const object = tree_.find(id);
    if (object == nullptr || !object->states.has(AtspiState::focusable)) return false;
    later([this, surface = object->surface, key = object->key] {
        const auto all = surfaces_.all();
        const auto found = all.find(surface);
        SurfaceContent* const content = found != all.end() ? found->second.content() : nullptr;
        if (content != nullptr) content->focus(key);
    });
    return true;
}

// Step by step, as the user would go there.
bool AtspiApplication::setValue(AtspiId id, double value) {
    const AtspiObject* const object = tree_.find(id);
    if (object == nullptr || !object->number || !(object->number->step > 0) || !std::isfinite(value))
        return false;
    const double steps = std::round((value - object->number->now) / object->number->step);
    later([this, steps, surface = object->surface, key = object->key] {
        const char* const action = steps > 0 ? "increment" : "decrement";
        for (int i = 0; i < kMostSteps && i < std::abs(steps); ++i) {
            const auto all = surfaces_.all();
            const auto found = all.find(surface);
            SurfaceContent* const content = found != all.end() ? found->second.content() : nullptr;
            if (content == nullptr || !content->perform(key, action)) return;
            content->accessibleTree();  // takes the step in, so that the next one starts from there
        }
    });
    return true;
}

}  // namespace norvane
