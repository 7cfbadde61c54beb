#pragma once

#include "views/Image.h"

namespace norvane {

// The product's logo, which says nothing to those who cannot see.
struct WelcomeLogoView {
    Element body() const { return image("NorvaneLogo", {132, 132}).padding(Insets::vertical(6)); }
};

}  // namespace norvane
