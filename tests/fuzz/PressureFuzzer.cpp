#include "platform/linux/Pressure.h"
#include "Property.h"

namespace norvane {
namespace {

std::string share(std::uint64_t hundredths) {
    const std::uint64_t rest = hundredths % 100;
    return std::to_string(hundredths / 100) + (rest < 10 ? ".0" : ".") + std::to_string(rest);
}

}  // namespace

void check(std::string_view text) {
    const auto pressure = parsePressure(text);
    require(parsePressure(amongUnknownLines(text)) == pressure, "unknown lines don't matter");
    if (!pressure) return;
    require(text.find("some") != std::string_view::npos, "there is no value without its line");
    require(pressure->fullAvg10 == 0 || text.find("full") != std::string_view::npos,
            "nor without that of all tasks");
    const std::string printed = "full avg300=9.99 avg10=" + share(pressure->fullAvg10) +
                                " total=4\nsome avg10=" + share(pressure->someAvg10) + " avg60=9.99\n";
    require(parsePressure(printed) == pressure, "the shares survive printing");
}

}  // namespace norvane
