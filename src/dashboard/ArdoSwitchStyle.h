#pragma once

#include <functional>
#include <string>

#include "views/Element.h"
#include "views/Paint.h"

namespace norvane {

// How the dashboard's switches look: a row of a label and a switch, which a press anywhere on it flips.
//
//     ArdoSwitchStyle{VoltGreen::settings}.body("Smart", preferences.isSmart(), [this](bool isOn) {
//         hosted_.change([&] { preferences_.setIsSmart(isOn); });
//     })
struct ArdoSwitchStyle {
    Paint tint = Ink::green;

    // `flipped` is called inside the switch's spring: whatever it changes moves along.
    Element body(const std::string& label, bool isOn, std::function<void(bool isOn)> flipped,
                 bool isEnabled = true) const;
};

}  // namespace norvane
