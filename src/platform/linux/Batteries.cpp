#include "platform/linux/Batteries.h"

#include <utility>

#include "platform/linux/BatteryFigures.h"
#include "platform/linux/BatteryHealth.h"
#include "platform/linux/SystemSupplies.h"

namespace norvane {

Batteries::Batteries(RootFolder root, std::function<MonotonicInstant()> now)
    : root_(std::move(root)), now_(std::move(now)) {}

bool Batteries::isDue(const Answer& newest, MonotonicInstant now) {
    return newest.hasSupplies || !newest.readAt || now - *newest.readAt >= kLookAgain;
}

Batteries::Answer Batteries::read() {
    const SystemSupplies supplies = readSystemSupplies(root_);
    // The figures are as old as the last of them, which may have taken its time.
    const MonotonicInstant now = now_();
    Answer answer;
    answer.hasSupplies = supplies.areThereAny;
    answer.readAt = now;
    if (supplies.batteries.empty()) {
        times_.forget();
        return answer;
    }

    const auto isExternal = isExternalPowerConnected(supplies.externals, supplies.batteries);
    const BatteryTimes::Minutes minutes = times_.update(supplies.batteries, isExternal, now);
    answer.services.emplace_back(batteryProperties(supplies.batteries, isExternal));
    answer.sources.emplace_back(PropertyDictionary{
        {"Is Charged", isCharged(supplies.batteries, isExternal)},
        {"Time to Empty", minutes.toEmpty},
        {"Time to Full Charge", minutes.toFull},
        {"BatteryHealthCondition", batteryHealthCondition(supplies.batteries)},
    });
    return answer;
}

}  // namespace norvane
