#include "dashboard/GaugeMotion.h"

#include <cmath>

#include "platform/Decimal.h"

namespace norvane {

std::string gaugePercent(double share) {
    return decimal(std::isfinite(share) ? share * 100 : 0, 0) + " %";
}

}  // namespace norvane
