#include "gallery/ControlExhibits.h"

#include <string>

#include "dashboard/ArdoSegmentedPicker.h"
#include "dashboard/ArdoSwitchStyle.h"
#include "dashboard/VoltGreen.h"
#include "gallery/Captions.h"
#include "gallery/Showing.h"
#include "platform/Decimal.h"
#include "views/Button.h"
#include "views/Link.h"
#include "views/Spacer.h"
#include "views/Spinner.h"
#include "views/Stack.h"
#include "views/Stepper.h"
#include "views/Symbol.h"
#include "views/Text.h"

namespace norvane::gallery {
namespace {

using namespace std::chrono_literals;

constexpr double kRowWidth = 312;
constexpr TextStyle kBody{.font = {.size = 13}};

Element switchRow(const std::string& label, bool isOn, std::function<void(bool)> flipped = {},
                  bool isEnabled = true) {
    return ArdoSwitchStyle{VoltGreen::settings}
        .body(label, isOn, std::move(flipped), isEnabled)
        .frame({.width = kRowWidth});
}

Element pickerRow(const std::string& label, std::vector<std::string> labels, int chosen, double itemWidth,
                  std::function<void(int)> select = {}) {
    ArdoSegmentedPicker<int> picker{.name = label,
                                    .selection = chosen,
                                    .options = {},
                                    .activeTint = VoltGreen::settings,
                                    .itemWidth = itemWidth,
                                    .select = std::move(select)};
    for (int i = 0; i < static_cast<int>(labels.size()); ++i)
        picker.options.emplace_back(labels[static_cast<std::size_t>(i)], i);
    return hstack({}, text(label, kBody).layoutPriority(1), spacer(), picker.body())
        .frame({.width = kRowWidth});
}

Element stepperRow(double value) {
    const TextStyle style{
        .font = {.size = 12, .weight = FontWeight::medium, .design = FontDesign::monospaced}};
    const std::string written = decimal(value, 0) + " GB";
    return hstack({.spacing = 8}, text(written, style).frame({.width = 110, .horizontal = Alignment::end}),
                  stepper({.name = "Threshold " + written,
                           .valueText = written,
                           .stepping = {.least = 10, .most = 200, .step = 5}},
                          value, {}));
}

}  // namespace

DisplayList switches(Stage& stage) {
    const auto body = [] {
        return column(
            these(switchRow("Off", false), switchRow("On, with a label as long as any other", true),
                  switchRow("Off, with the keyboard", false), switchRow("Off, disabled", false, {}, false),
                  switchRow("On, disabled", true, {}, false)),
            8);
    };
    return Showing(stage, body).tab(3).picture();
}

DisplayList switchHalfWay(Stage& stage) {
    bool isOn = false;
    Showing* shown = nullptr;
    Showing showing(stage, [&] {
        return switchRow("Just pressed", isOn, [&](bool on) { shown->view().change([&] { isOn = on; }); });
    });
    shown = &showing;
    return showing.press("Just pressed").pass(60ms).picture();
}

DisplayList pickers(Stage& stage) {
    const auto body = [] {
        return column(these(pickerRow("Two narrow ones", {"°C", "°F"}, 0, 30),
                            pickerRow("Two wide ones", {"Dynamic", "Stats"}, 1, 60),
                            pickerRow("Three, focused", {"One", "Two", "Three"}, 1, 60),
                            pickerRow("None of them", {"Concise", "Detailed"}, -1, 60)),
                      8);
    };
    return Showing(stage, body).tab(6).picture();
}

DisplayList pickerHalfWay(Stage& stage) {
    int chosen = 0;
    Showing* shown = nullptr;
    Showing showing(stage, [&] {
        return pickerRow("Just pressed", {"Concise", "Detailed"}, chosen, 60,
                         [&](int index) { shown->view().change([&] { chosen = index; }); });
    });
    shown = &showing;
    return showing.press("Detailed").pass(60ms).picture();
}

DisplayList steppers(Stage& stage) {
    const auto body = [] { return column(these(stepperRow(10), stepperRow(100), stepperRow(200))); };
    return Showing(stage, body).tab(2).picture();
}

DisplayList stepperHeld(Stage& stage) {
    const auto body = [] {
        return stepper({.name = "Threshold", .valueText = "", .stepping = {}}, 50, {})
            .frame({.width = 52, .horizontal = Alignment::start});
    };
    Showing showing(stage, body);
    // The middle of the plus.
    const Point plus{24 + 38, 24 + 10};
    showing.view().pointer({PointerEvent::Kind::move, plus});
    showing.view().pointer({PointerEvent::Kind::press, plus});
    return showing.picture();
}

DisplayList buttons(Stage& stage) {
    const auto body = [] {
        const auto icon = [] { return symbol("gearshape", {.size = 16}).padding(Insets::all(4)); };
        return column(
            these(row(these(captioned("plain", button("Plain", icon(), [] {})),
                            captioned("with the keyboard", button("Focused", icon(), [] {}, {.radius = 6})),
                            captioned("disabled", button("Disabled", icon(), [] {}, {.isEnabled = false})),
                            captioned("link", link("A link", kBody, [] {})))),
                  row(these(prominentButton("Get started", 120, VoltGreen::welcome, [] {}),
                            prominentButton("Accent", 80, {0.04, 0.39, 0.82, 1}, [] {})))));
    };
    return Showing(stage, body).tab(2).picture();
}

DisplayList buttonHeld(Stage& stage) {
    const auto body = [] { return prominentButton("Held down", 120, VoltGreen::welcome, [] {}); };
    return Showing(stage, body).hold("Held down").picture();
}

DisplayList linkPointedAt(Stage& stage) {
    const auto body = [] {
        return column(these(link("Somewhere good", kBody, [] {}),
                            link("Somewhere large", {.font = {.size = 20}}, [] {})));
    };
    return Showing(stage, body).pointAt("Somewhere good").picture();
}

DisplayList spinners(Stage& stage) {
    const auto body = [] {
        return row(these(spinner("Working"), spinner("Working", 32),
                         spinner("Working", 64, Ink::controlAccentColor)));
    };
    return pictureOf(stage, body, 300ms);
}

}  // namespace norvane::gallery
