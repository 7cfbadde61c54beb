#include "platform/linux/UDisksObjects.h"

#include <sys/sysmacros.h>
#include <algorithm>
#include <cstddef>

#include "platform/linux/GVariantPointer.h"

namespace norvane {
namespace {

// Encryption within encryption; a real one is alone.
constexpr std::size_t kMostParents = 16;

// An object's interface with its properties, by their names.
GVariantPointer propertiesOf(GVariant* interfaces, const char* interface) {
    return GVariantPointer(g_variant_lookup_value(interfaces, interface, G_VARIANT_TYPE_VARDICT));
}

// "/" stands for no object.
std::string pathIn(GVariant* properties, const char* name) {
    const GVariantPointer value(g_variant_lookup_value(properties, name, G_VARIANT_TYPE_OBJECT_PATH));
    const char* const path = value ? g_variant_get_string(value.get(), nullptr) : "/";
    return path == std::string_view("/") ? std::string() : path;
}

std::string textIn(GVariant* properties, const char* name) {
    const GVariantPointer value(g_variant_lookup_value(properties, name, G_VARIANT_TYPE_STRING));
    return value ? g_variant_get_string(value.get(), nullptr) : std::string();
}

bool isPropertySet(GVariant* properties, const char* name) {
    const GVariantPointer value(g_variant_lookup_value(properties, name, G_VARIANT_TYPE_BOOLEAN));
    return value && g_variant_get_boolean(value.get()) != FALSE;
}

DeviceNumber deviceNumberIn(GVariant* properties, const char* name) {
    const GVariantPointer value(g_variant_lookup_value(properties, name, G_VARIANT_TYPE_UINT64));
    const guint64 number = value ? g_variant_get_uint64(value.get()) : 0;
    return {gnu_dev_major(number), gnu_dev_minor(number)};
}

}  // namespace

UDisksObjects::UDisksObjects(GVariant* objects) {
    for (gsize i = 0; i < g_variant_n_children(objects); ++i) {
        const GVariantPointer entry(g_variant_get_child_value(objects, i));
        const GVariantPointer path(g_variant_get_child_value(entry.get(), 0));
        const GVariantPointer interfaces(g_variant_get_child_value(entry.get(), 1));
        const std::string name = g_variant_get_string(path.get(), nullptr);
        if (const auto properties = propertiesOf(interfaces.get(), kDrive)) {
            drives_[name] = {.isEjectable = isPropertySet(properties.get(), "Ejectable"),
                             .isRemovable = isPropertySet(properties.get(), "Removable"),
                             .canPowerOff = isPropertySet(properties.get(), "CanPowerOff"),
                             .sibling = textIn(properties.get(), "SiblingId")};
        }
        if (const auto properties = propertiesOf(interfaces.get(), kBlock)) {
            const auto partition = propertiesOf(interfaces.get(), kPartition);
            blocks_[name] = {.device = deviceNumberIn(properties.get(), "DeviceNumber"),
                             .drive = pathIn(properties.get(), "Drive"),
                             .encrypted = pathIn(properties.get(), "CryptoBackingDevice"),
                             .partitioned = partition ? pathIn(partition.get(), "Table") : std::string(),
                             .isFileSystem = propertiesOf(interfaces.get(), kFilesystem) != nullptr,
                             .isLoop = propertiesOf(interfaces.get(), kLoop) != nullptr};
        }
    }
}

const UDisksObjects::Block* UDisksObjects::block(const std::string& path) const {
    const auto found = blocks_.find(path);
    return found == blocks_.end() ? nullptr : &found->second;
}

std::optional<std::string> UDisksObjects::fileSystemOn(const DeviceNumber& device) const {
    const auto found = std::find_if(blocks_.begin(), blocks_.end(), [&](const auto& entry) {
        return entry.second.isFileSystem && entry.second.device == device;
    });
    if (found == blocks_.end()) return std::nullopt;
    return found->first;
}

UDisksObjects::Ground UDisksObjects::groundOf(const std::string& path) const {
    Ground ground;
    std::string at = path;
    while (const Block* const found = block(at)) {
        if (ground.drive.empty()) ground.drive = found->drive;
        const Block* const whole = block(found->partitioned);
        if (found->isLoop) {
            ground.loop = at;
        } else if (whole != nullptr && whole->isLoop) {
            ground.loop = found->partitioned;
        }
        at = found->encrypted;
        // A service that is out of its mind may lead in a circle, or without an end.
        const auto& passed = ground.encrypted;
        if (at.empty() || at == path || std::find(passed.begin(), passed.end(), at) != passed.end()) break;
        if (passed.size() == kMostParents) break;
        ground.encrypted.push_back(at);
    }
    return ground;
}

bool UDisksObjects::isPowerShared(const std::string& drive) const {
    const std::string& sibling = drives_.at(drive).sibling;
    return !sibling.empty() && std::any_of(drives_.begin(), drives_.end(), [&](const auto& other) {
        return other.first != drive && other.second.sibling == sibling;
    });
}

std::vector<UDisksObjects::Call> UDisksObjects::callsAfterUnmount(
    const std::string& fileSystem, const std::vector<DeviceNumber>& mounted) const {
    const Block* const own = block(fileSystem);
    const auto isMounted = [&](const Block& each) {
        return each.isFileSystem && std::find(mounted.begin(), mounted.end(), each.device) != mounted.end();
    };
    // Mounted a second time, it needs all that it lies on.
    if (own == nullptr || isMounted(*own)) return {};

    const Ground ground = groundOf(fileSystem);
    std::vector<Call> calls;
    for (const std::string& path : ground.encrypted)
        calls.push_back({path, kEncrypted, "Lock"});
    const bool isNeeded = std::any_of(blocks_.begin(), blocks_.end(), [&](const auto& other) {
        if (!isMounted(other.second)) return false;
        const Ground its = groundOf(other.first);
        return (!ground.drive.empty() && its.drive == ground.drive) ||
               (!ground.loop.empty() && its.loop == ground.loop);
    });
    if (isNeeded) return calls;

    if (!ground.loop.empty()) calls.push_back({ground.loop, kLoop, "Delete"});
    const auto drive = drives_.find(ground.drive);
    if (drive == drives_.end()) return calls;
    if (drive->second.isEjectable) calls.push_back({drive->first, kDrive, "Eject"});
    if (drive->second.canPowerOff && drive->second.isRemovable && !isPowerShared(drive->first)) {
        calls.push_back({drive->first, kDrive, "PowerOff"});
    }
    return calls;
}

}  // namespace norvane
