#include "platform/linux/VolumeEjection.h"

#include <algorithm>
#include <utility>

#include "platform/linux/BlockDevices.h"
#include "platform/linux/GErrorPointer.h"
#include "platform/linux/GVariantPointer.h"
#include "platform/linux/VolumeMounts.h"

namespace norvane {
namespace {

constexpr const char* kService = "org.freedesktop.UDisks2";
constexpr const char* kManagerPath = "/org/freedesktop/UDisks2";

// Without the error's name on the bus, which GLib puts before it.
std::string messageOf(const GError* error) {
    const GErrorPointer own(g_error_copy(error));
    g_dbus_error_strip_remote_error(own.get());
    return own->message;
}

// The one that lies under what the path leads to; none for a server, or where nothing is mounted just there.
std::optional<DeviceNumber> deviceUnder(const RootFolder& root, const std::string& path) {
    const auto table = readMounts(root).value_or(std::vector<Mount>());
    const auto mount =
        std::find_if(table.begin(), table.end(), [&](const Mount& each) { return each.point == path; });
    if (mount == table.end()) return std::nullopt;
    const auto device = BlockDevices(root).behind(*mount);
    if (!device) return std::nullopt;
    return device->number;
}

// None where that cannot be told.
std::optional<std::vector<DeviceNumber>> devicesMounted(const RootFolder& root) {
    const auto table = readMounts(root);
    if (!table) return std::nullopt;
    BlockDevices devices(root);
    std::vector<DeviceNumber> numbers;
    for (const Mount& mount : *table) {
        if (const auto device = devices.behind(mount)) numbers.push_back(device->number);
    }
    return numbers;
}

}  // namespace

VolumeEjection::VolumeEjection(BusConnection& systemBus, MainQueue& mainQueue,
                               BackgroundQueue& backgroundQueue, RootFolder root, std::string path,
                               std::function<void(std::optional<std::string> error)> ended)
    : bus_(systemBus),
      root_(std::move(root)),
      path_(std::move(path)),
      ended_(std::move(ended)),
      reader_(mainQueue, backgroundQueue) {
    using Device = std::optional<DeviceNumber>;
    reader_.read<Device>([folder = root_, point = path_] { return deviceUnder(folder, point); },
                         [this](const std::optional<Device>& device) {
                             if (device && *device) return askForObjects(**device);
                             end("No device of this machine is mounted there");
                         });
}

void VolumeEjection::askForObjects(const DeviceNumber& device) {
    call_ = bus_.call({.name = kService,
                       .path = kManagerPath,
                       .interface = "org.freedesktop.DBus.ObjectManager",
                       .method = "GetManagedObjects",
                       .answerType = G_VARIANT_TYPE("(a{oa{sa{sv}}})")},
                      [this, device](GVariant* answer, const GError* error) {
                          if (answer == nullptr) return end(messageOf(error));
                          const GVariantPointer objects(g_variant_get_child_value(answer, 0));
                          objects_ = UDisksObjects(objects.get());
                          const auto path = objects_.fileSystemOn(device);
                          if (!path) return end("The storage service does not know the volume");
                          unmount_ = {*path, UDisksObjects::kFilesystem, "Unmount"};
                          unmount();
                      });
}

void VolumeEjection::unmount() {
    call(unmount_, [this](GVariant* answer, const GError* error) {
        if (answer == nullptr) return end(messageOf(error));
        letGo();
    });
}

// The mount table is asked rather than the service, whose own picture of it may be late: of two volumes of
// one device that are ejected at the same time, the later one is to see that the other has gone.
void VolumeEjection::letGo() {
    using Devices = std::optional<std::vector<DeviceNumber>>;
    reader_.read<Devices>([folder = root_] { return devicesMounted(folder); },
                          [this](const std::optional<Devices>& mounted) {
                              if (mounted && *mounted) {
                                  calls_ = objects_.callsAfterUnmount(unmount_.path, **mounted);
                              }
                              goOn();
                          });
}

void VolumeEjection::goOn() {
    if (next_ == calls_.size()) return end(std::nullopt);
    call(calls_[next_++], [this](GVariant*, const GError*) { goOn(); });
}

void VolumeEjection::end(std::optional<std::string> error) {
    const auto ended = std::exchange(ended_, nullptr);
    ended(std::move(error));
}

// A device takes its time, and so does a user who is asked for a password: there is no limit. The call's
// texts stay where they are until it is answered.
void VolumeEjection::call(const UDisksObjects::Call& call, BusConnection::Answered answered) {
    GVariantBuilder options;
    g_variant_builder_init(&options, G_VARIANT_TYPE_VARDICT);
    call_ = bus_.call({.name = kService,
                       .path = call.path.c_str(),
                       .interface = call.interface,
                       .method = call.method,
                       .parameters = g_variant_new("(a{sv})", &options),
                       .flags = G_DBUS_CALL_FLAGS_ALLOW_INTERACTIVE_AUTHORIZATION,
                       .limit = std::nullopt},
                      std::move(answered));
}

}  // namespace norvane
