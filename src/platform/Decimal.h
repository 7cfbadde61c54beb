#pragma once

#include <string>

namespace norvane {

// The number with exactly `places` digits (0 to 17) after the point, as "%.*f" writes it, whatever the user's
// locale. Ties of the binary value go to the even digit. What is not finite reads "nan", "inf", "-inf".
std::string decimal(double value, int places);

}  // namespace norvane
