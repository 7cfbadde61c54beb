#include "insight/ImpactPod.h"

namespace norvane {

std::string_view impactPodIcon(const SystemSnapshot* snapshot) {
    return snapshot == nullptr || snapshot->isOnBattery ? "bolt.circle" : "bolt.circle.fill";
}

std::string_view impactPodValue(const SystemSnapshot* snapshot) {
    if (snapshot == nullptr) return "—";
    if (!snapshot->isOnBattery) return "Plugged In";
    switch (snapshot->energyImpact) {
        case ImpactState::low:
            return "Normal";
        case ImpactState::moderate:
            return "Moderate";
        case ImpactState::high:
            return "High";
    }
    return {};
}

}  // namespace norvane
