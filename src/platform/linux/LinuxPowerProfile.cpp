#include "platform/linux/LinuxPowerProfile.h"

#include <mutex>
#include <string_view>
#include <utility>

#include "platform/linux/FirmwareProfileFiles.h"
#include "platform/linux/GVariantPointer.h"
#include "platform/linux/WellKnownNames.h"

namespace norvane {
namespace {

struct Service {
    // Also its interface.
    const char* name;
    const char* path;
};

// The newer name first. Not every service that has it also has the older one, and the other way round.
constexpr std::array<Service, 2> kServices{
    Service{"org.freedesktop.UPower.PowerProfiles", "/org/freedesktop/UPower/PowerProfiles"},
    Service{"net.hadess.PowerProfiles", "/net/hadess/PowerProfiles"}};

constexpr const char* kActiveProfile = "ActiveProfile";

ProfileService serviceTelling(GVariant* value) {
    return g_variant_is_of_type(value, G_VARIANT_TYPE_STRING)
               ? norvane::serviceTelling(g_variant_get_string(value, nullptr))
               : ProfileService::silent;
}

}  // namespace

// What the lane shares with the main thread; it may outlive the watcher.
struct LinuxPowerProfile::LaneSide {
    explicit LaneSide(const RootFolder& root) : files(root) {}

    FirmwareProfileFiles files;  // the lane's

    std::mutex mutex;
    LinuxPowerProfile* watcher = nullptr;                 // guarded by mutex; written on the main thread
    FirmwareProfile lastTold = FirmwareProfile::unknown;  // guarded by mutex

    void read(const std::shared_ptr<LaneSide>& self) {
        const FirmwareProfile profile = files.read();
        const std::lock_guard lock(mutex);
        // What the main thread knows already is no reason to wake it up.
        if (watcher == nullptr || lastTold == profile) return;
        watcher->mainQueue_.async([self, profile] {
            if (self->watcher != nullptr) self->watcher->firmwareRead(profile);
        });
        lastTold = profile;
    }
};

LinuxPowerProfile::LinuxPowerProfile(MainQueue& mainQueue, BusConnection& systemBus, const RootFolder& root,
                                     std::unique_ptr<Lane> lane, std::atomic<bool>& isLowPower,
                                     std::chrono::nanoseconds readAgain)
    : mainQueue_(mainQueue),
      bus_(systemBus),
      root_(root),
      lane_(std::move(lane)),
      isLowPower_(isLowPower),
      readAgain_(readAgain),
      laneSide_(std::make_shared<LaneSide>(root)) {
    laneSide_->watcher = this;
    for (std::size_t service = 0; service < kServices.size(); ++service) {
        const auto& [name, path] = kServices[service];
        conversations_[service].properties =
            bus_.onSignal({.sender = name,
                           .path = path,
                           .interface = kPropertiesInterface,
                           .member = "PropertiesChanged",
                           .firstArgument = name},
                          [this, service](GVariant* parameters) { propertiesChanged(service, parameters); });
        conversations_[service].owner = bus_.onOwnerChange(name, [this, service](bool hasOwner) {
            if (hasOwner) {
                ask(service);
            } else {
                know(service, ProfileService::absent);
            }
        });
    }
    const auto follow = [this](BusConnection::State state) {
        for (std::size_t service = 0; service < kServices.size(); ++service) {
            if (state == BusConnection::State::connected) ask(service);
            if (state == BusConnection::State::down) know(service, ProfileService::absent);
        }
    };
    connection_ = bus_.onStateChange(follow);
    follow(bus_.state());
}

LinuxPowerProfile::~LinuxPowerProfile() {
    const std::lock_guard lock(laneSide_->mutex);
    laneSide_->watcher = nullptr;
}

// Whoever could own the name must not be started for this: it may stop another power manager.
void LinuxPowerProfile::ask(std::size_t service) {
    const auto& [name, path] = kServices[service];
    know(service, ProfileService::unknown);
    conversations_[service].question =
        bus_.call({.name = name,
                   .path = path,
                   .interface = kPropertiesInterface,
                   .method = "Get",
                   .parameters = g_variant_new("(ss)", name, kActiveProfile),
                   .answerType = G_VARIANT_TYPE("(v)"),
                   .flags = G_DBUS_CALL_FLAGS_NO_AUTO_START},
                  [this, service](GVariant* answer, const GError* error) {
                      if (answer != nullptr) {
                          const GVariantPointer boxed(g_variant_get_child_value(answer, 0));
                          const GVariantPointer value(g_variant_get_variant(boxed.get()));
                          know(service, serviceTelling(value.get()));
                      } else if (g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER) ||
                                 g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN)) {
                          know(service, ProfileService::absent);
                      } else {
                          know(service, ProfileService::silent);
                      }
                  });
}

void LinuxPowerProfile::propertiesChanged(std::size_t service, GVariant* parameters) {
    if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(sa{sv}as)"))) return;
    const GVariantPointer changed(g_variant_get_child_value(parameters, 1));
    const GVariantPointer value(g_variant_lookup_value(changed.get(), kActiveProfile, nullptr));
    if (value) {
        conversations_[service].question.cancel();  // its answer would be an older one
        know(service, serviceTelling(value.get()));
        return;
    }
    const GVariantPointer invalidated(g_variant_get_child_value(parameters, 2));
    const std::unique_ptr<const gchar*, decltype(&g_free)> names(
        g_variant_get_strv(invalidated.get(), nullptr), &g_free);
    if (g_strv_contains(names.get(), kActiveProfile)) ask(service);
}

void LinuxPowerProfile::know(std::size_t service, ProfileService state) {
    if (state == ProfileService::absent) conversations_[service].question.cancel();
    services_[service] = state;
    update();
}

void LinuxPowerProfile::update() {
    const bool wasWatched = std::exchange(isFirmwareWatched_, isFirmwareAsked(services_));
    if (wasWatched != isFirmwareWatched_) look();
    if (const auto isLow = isLowPower(services_, firmware_)) {
        isLowPower_.store(*isLow, std::memory_order_relaxed);
    }
}

// Once whenever the services have gone: a machine that has no such file does not get one later on, unless
// somebody loads a driver.
void LinuxPowerProfile::look() {
    nextReading_.cancel();
    if (!isFirmwareWatched_) return;
    firmware_ = FirmwareProfileFiles::isThere(root_) ? FirmwareProfile::unknown : FirmwareProfile::absent;
    if (firmware_ == FirmwareProfile::absent) return;
    {
        const std::lock_guard lock(laneSide_->mutex);
        laneSide_->lastTold = FirmwareProfile::unknown;
    }
    readFirmware();
}

void LinuxPowerProfile::readFirmware() {
    nextReading_ = mainQueue_.after(readAgain_, [this] { readFirmware(); });
    // A reading that is stuck is waited for: the lane takes no more than one further.
    lane_->post([side = laneSide_] {
        try {
            side->read(side);
        } catch (...) {
            // Out of memory, say: the last answer stands.
        }
    });
}

void LinuxPowerProfile::firmwareRead(FirmwareProfile profile) {
    if (!isFirmwareWatched_) return;
    firmware_ = profile;
    if (profile == FirmwareProfile::absent) nextReading_.cancel();
    update();
}

}  // namespace norvane
