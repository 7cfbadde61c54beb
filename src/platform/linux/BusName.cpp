#include "platform/linux/BusName.h"

#include <cstdint>
#include <utility>

#include "platform/linux/WellKnownNames.h"

namespace norvane {
namespace {

// What the bus is asked with, and answers, by the documentation of RequestName at freedesktop.org.
constexpr std::uint32_t kDoNotQueue = 4;
constexpr std::uint32_t kPrimaryOwner = 1;
constexpr std::uint32_t kAlreadyOwner = 4;

}  // namespace

BusName::BusName(BusConnection& bus, std::string name, std::function<void(bool)> told)
    : bus_(bus), name_(std::move(name)), told_(std::move(told)) {
    connection_ = bus_.onStateChange([this](BusConnection::State state) {
        if (state == BusConnection::State::connected) {
            request();
        } else if (isOwned_) {
            tell(false);
        }
    });
    if (bus_.state() == BusConnection::State::connected) request();
}

BusName::~BusName() {
    if (bus_.state() != BusConnection::State::connected) return;
    // Also where the request is still on its way: the bus takes both in their order.
    bus_.call({.name = kBusDriver,
               .path = kBusDriverPath,
               .interface = kBusDriver,
               .method = "ReleaseName",
               .parameters = g_variant_new("(s)", name_.c_str())},
              nullptr)
        .cancel();
}

void BusName::request() {
    request_ = bus_.call({.name = kBusDriver,
                          .path = kBusDriverPath,
                          .interface = kBusDriver,
                          .method = "RequestName",
                          .parameters = g_variant_new("(su)", name_.c_str(), kDoNotQueue),
                          .answerType = G_VARIANT_TYPE("(u)")},
                         [this](GVariant* answer, const GError*) {
                             guint32 outcome = 0;
                             if (answer != nullptr) g_variant_get(answer, "(u)", &outcome);
                             tell(outcome == kPrimaryOwner || outcome == kAlreadyOwner);
                         });
}

void BusName::tell(bool isOwned) {
    isOwned_ = isOwned;
    const auto told = told_;
    told(isOwned);
}

}  // namespace norvane
