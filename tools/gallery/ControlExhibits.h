#pragma once

#include "gallery/Exhibit.h"

namespace norvane::gallery {

DisplayList switches(Stage& stage);
DisplayList switchHalfWay(Stage& stage);
DisplayList pickers(Stage& stage);
DisplayList pickerHalfWay(Stage& stage);
DisplayList steppers(Stage& stage);
DisplayList stepperHeld(Stage& stage);
DisplayList buttons(Stage& stage);
DisplayList buttonHeld(Stage& stage);
DisplayList linkPointedAt(Stage& stage);
DisplayList spinners(Stage& stage);

}  // namespace norvane::gallery
