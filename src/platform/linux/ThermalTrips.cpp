#include "platform/linux/ThermalTrips.h"

namespace norvane {

void ThermalTrips::add(std::string_view type, MilliCelsius temperature) {
    if (temperature < 40'000 || temperature > 150'000) return;
    std::optional<MilliCelsius>* trip = nullptr;
    if (type == "passive") trip = &passive_;
    if (type == "hot") trip = &hot_;
    if (type == "critical") trip = &critical_;
    if (trip != nullptr && (!*trip || temperature < **trip)) *trip = temperature;
}

}  // namespace norvane
