#include "shell/WelcomeView.h"

#include "shell/WelcomeLogoView.h"
#include "views/Button.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {

Element WelcomeView::body() const {
    const TextStyle title{.font = {.size = 24, .weight = FontWeight::semibold}};
    const TextStyle motto{.font = {.size = 15}, .lineSpacing = 4, .alignment = TextAlignment::center};
    constexpr Color kTitleGreen{0, 0.75, 0.4, 1};
    return vstack({.spacing = 18},                     //
                  WelcomeLogoView{}.body(),            //
                  text("Norvane", title, kTitleGreen)  //
                      .accessible({.role = AccessibleRole::heading, .name = "Norvane"}),
                  text("System health, demystified.\nClarity for what matters.", motto, Ink::secondary)
                      .frame({.maxWidth = 240}),
                  prominentButton("Get Started", 110, voltGreen, onContinue).padding({.top = 8}))
        .padding({.top = 30, .left = 32, .bottom = 30, .right = 32})
        .frame({.width = 300});
}

}  // namespace norvane
