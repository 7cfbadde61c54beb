#include "platform/linux/NotifierItem.h"

#include <unistd.h>
#include <cstddef>
#include <utility>

#include "platform/linux/NotificationText.h"
#include "platform/linux/NotifierMenu.h"
#include "platform/linux/NotifierWatch.h"
#include "platform/Utf8.h"

namespace norvane {
namespace {

constexpr const char* kItem = "org.kde.StatusNotifierItem";
constexpr const char* kItemPath = "/StatusNotifierItem";

constexpr const char* kItemInterfaces = R"(<node><interface name='org.kde.StatusNotifierItem'>
    <property name='Category' type='s' access='read'/>
    <property name='Id' type='s' access='read'/>
    <property name='Title' type='s' access='read'/>
    <property name='Status' type='s' access='read'/>
    <property name='WindowId' type='i' access='read'/>
    <property name='IconThemePath' type='s' access='read'/>
    <property name='IconName' type='s' access='read'/>
    <property name='IconPixmap' type='a(iiay)' access='read'/>
    <property name='OverlayIconName' type='s' access='read'/>
    <property name='OverlayIconPixmap' type='a(iiay)' access='read'/>
    <property name='AttentionIconName' type='s' access='read'/>
    <property name='AttentionIconPixmap' type='a(iiay)' access='read'/>
    <property name='AttentionMovieName' type='s' access='read'/>
    <property name='ToolTip' type='(sa(iiay)ss)' access='read'/>
    <property name='ItemIsMenu' type='b' access='read'/>
    <property name='Menu' type='o' access='read'/>
    <method name='Activate'><arg name='x' type='i'/><arg name='y' type='i'/></method>
    <method name='SecondaryActivate'><arg name='x' type='i'/><arg name='y' type='i'/></method>
    <method name='ContextMenu'><arg name='x' type='i'/><arg name='y' type='i'/></method>
    <method name='Scroll'><arg name='delta' type='i'/><arg name='orientation' type='s'/></method>
    <signal name='NewTitle'/>
    <signal name='NewIcon'/>
    <signal name='NewOverlayIcon'/>
    <signal name='NewAttentionIcon'/>
    <signal name='NewToolTip'/>
    <signal name='NewStatus'><arg name='status' type='s'/></signal>
    </interface></node>)";

constexpr std::size_t kLongestToolTip = 4000;  // bytes

GVariant* pixmaps(const std::vector<NotifierImage>& pictures) {
    GVariantBuilder list;
    g_variant_builder_init(&list, G_VARIANT_TYPE("a(iiay)"));
    for (const NotifierImage& each : pictures) {
        g_variant_builder_add(
            &list, "(ii@ay)", each.width, each.height,
            g_variant_new_fixed_array(G_VARIANT_TYPE_BYTE, each.bytes.data(), each.bytes.size(), 1));
    }
    return g_variant_builder_end(&list);
}

}  // namespace

NotifierItem::NotifierItem(BusConnection& sessionBus, MainQueue& mainQueue, const MonotonicClock& clock,
                           unsigned number, Handlers handlers, std::chrono::milliseconds limit)
    : bus_(sessionBus),
      limit_(limit),
      handlers_(std::move(handlers)),
      repainting_(mainQueue, clock, kPicturePause, [this] { return repaint(); }),
      tellingToolTip_(mainQueue, clock, kToolTipPause, [this] { return tellToolTip(); }),
      // Before the name: who learns of it finds the object.
      object_(bus_.exportObject({.path = kItemPath,
                                 .description = kItemInterfaces,
                                 .called = [this](std::string_view method,
                                                  GVariant* arguments) { return called(method, arguments); },
                                 .read = [this](std::string_view property) { return read(property); }})),
      watcher_(
          bus_.onOwnerChange(NotifierWatch::kWatcher, [this](bool hasOwner) { watcherChanged(hasOwner); })),
      name_(bus_, "org.kde.StatusNotifierItem-" + std::to_string(getpid()) + '-' + std::to_string(number),
            [this](bool isOwned) { nameChanged(isOwned); }) {}

void NotifierItem::nameChanged(bool isOwned) {
    if (isOwned) {
        registerAtWatcher();
    } else if (bus_.state() == BusConnection::State::connected) {
        refuse();
    } else {
        watcherChanged(false);
    }
}

void NotifierItem::watcherChanged(bool isThere) {
    if (isThere) {
        registerAtWatcher();
    } else {
        registration_.cancel();
        isRegistered_ = false;
    }
}

void NotifierItem::registerAtWatcher() {
    if (!name_.isOwned()) return;
    toldToolTip_ = toolTip_;  // a panel that meets the item reads all of it
    registration_ = bus_.call({.name = NotifierWatch::kWatcher,
                               .path = NotifierWatch::kWatcherPath,
                               .interface = NotifierWatch::kWatcher,
                               .method = "RegisterStatusNotifierItem",
                               .parameters = g_variant_new("(s)", name_.text().c_str()),
                               .flags = G_DBUS_CALL_FLAGS_NO_AUTO_START,
                               .limit = limit_},
                              [this](GVariant* answer, const GError* error) {
                                  if (answer == nullptr) {
                                      // With the connection the watcher is gone, too.
                                      if (!g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CLOSED)) refuse();
                                      return;
                                  }
                                  if (isStale_) repainting_.request();
                                  if (toolTip_ != toldToolTip_) tellingToolTip_.request();
                                  if (std::exchange(isRegistered_, true)) return;
                                  const auto registered = handlers_.registered;
                                  registered();
                              });
}

void NotifierItem::refuse() {
    isRegistered_ = false;
    const auto refused = handlers_.refused;
    refused();
}

GVariant* NotifierItem::called(std::string_view method, GVariant* arguments) const {
    // The middle button does what the first one does: where panels open the menu with that, it is the only
    // way to click on the item. Menu and wheel are the panel's own affair.
    if (method == "Activate" || method == "SecondaryActivate") {
        gint32 x = 0;
        gint32 y = 0;
        g_variant_get(arguments, "(ii)", &x, &y);
        const auto activated = handlers_.activated;
        activated(x, y);
    }
    return g_variant_new_tuple(nullptr, 0);
}

GVariant* NotifierItem::read(std::string_view property) {
    if (property == "Category") return g_variant_new_string("Hardware");
    if (property == "Id") return g_variant_new_string("norvane");
    if (property == "Title") return g_variant_new_string("Norvane");
    if (property == "Status") return g_variant_new_string("Active");
    if (property == "WindowId") return g_variant_new_int32(0);
    if (property == "ItemIsMenu") return g_variant_new_boolean(FALSE);
    if (property == "Menu") return g_variant_new_object_path(NotifierMenu::kPath);
    if (property == "IconPixmap") {
        if (!isPainted_) repaint();
        return pixmaps(pictures_);
    }
    if (property == "ToolTip") {
        return g_variant_new("(s@a(iiay)ss)", "", pixmaps({}), "Norvane", toolTip_.c_str());
    }
    if (property.ends_with("Pixmap")) return pixmaps({});
    return g_variant_new_string("");  // names of pictures and where they are
}

void NotifierItem::pictureChanged() {
    isStale_ = true;
    if (isRegistered_) repainting_.request();
}

bool NotifierItem::repaint() {
    isStale_ = false;
    std::vector<NotifierImage> pictures = handlers_.paint();
    const bool isFirst = !std::exchange(isPainted_, true);
    if (pictures == pictures_) return false;
    pictures_ = std::move(pictures);
    if (!isFirst) bus_.emit(kItemPath, kItem, "NewIcon");
    return true;
}

void NotifierItem::setToolTip(std::string_view text) {
    const bool isWhole = text.size() <= kLongestToolTip;
    toolTip_ = escapedMarkup(repairedUtf8(isWhole ? text : text.substr(0, kLongestToolTip)));
    if (isRegistered_ && toolTip_ != toldToolTip_) tellingToolTip_.request();
}

bool NotifierItem::tellToolTip() {
    if (toolTip_ == toldToolTip_) return false;
    toldToolTip_ = toolTip_;
    bus_.emit(kItemPath, kItem, "NewToolTip");
    return true;
}

}  // namespace norvane
