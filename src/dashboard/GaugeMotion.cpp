#include "dashboard/GaugeMotion.h"

#include <cmath>

#include "platform/Decimal.h"

namespace norvane {

std::string gaugePercent(double share) {
    return decimal(gaugeNumber(share).now, 0) + " %";
}

AccessibleNumber gaugeNumber(double share) {
    return {.now = std::isfinite(share) ? share * 100 : 0};
}

}  // namespace norvane
