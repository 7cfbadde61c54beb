#pragma once

#include <functional>

#include "dashboard/VoltGreen.h"
#include "views/Element.h"

namespace norvane {

// What greets the user at the first start: the logo, the name, the motto and a button.
struct WelcomeView {
    std::function<void()> onContinue;
    // The button's tint.
    Color voltGreen = VoltGreen::welcome;

    Element body() const;
};

}  // namespace norvane
