#include "gallery/GaugeExhibits.h"

#include "dashboard/ArdoNeonBar.h"
#include "dashboard/VelocityBar.h"
#include "dashboard/WidgetRingView.h"
#include "gallery/Captions.h"
#include "gallery/Showing.h"
#include "platform/Decimal.h"

namespace norvane::gallery {
namespace {

using namespace std::chrono_literals;

constexpr double kBarWidth = 260;
constexpr double kBarHeight = 10;

// The breath is let out at multiples of 4 s, and held in the middle between two of them.
constexpr auto kDim = 4000ms;
constexpr auto kBright = 6000ms;

Element bar(Element gauge, double height = kBarHeight) {
    return std::move(gauge).frame({.width = kBarWidth, .height = height});
}

Element neonBars() {
    struct Row {
        const char* label;
        double percent;
        Ink color;
    };
    constexpr Row kRows[] = {
        {"0 %", 0, Ink::green},    {"1 %", 1, Ink::green},    {"4 %", 4, Ink::teal},
        {"25 %", 25, Ink::teal},   {"50 %", 50, Ink::purple}, {"75 %", 75, Ink::yellow},
        {"90 %", 90, Ink::orange}, {"100 %", 100, Ink::red},  {"140 %", 140, Ink::blue},
    };
    std::vector<Element> rows = forEach(kRows, [](const Row& row) {
        return labelled(row.label, bar(ArdoNeonBar{row.percent, 100, row.color}.body()));
    });
    rows.push_back(labelled("4 high", bar(ArdoNeonBar{60, 100, Ink::green}.body(), 4)));
    rows.push_back(labelled("20 high", bar(ArdoNeonBar{60, 100, Ink::green}.body(), 20)));
    return column(std::move(rows));
}

Element rings() {
    struct Cell {
        const char* title;
        const char* value;
        const char* icon;
        double progress;
        Ink color;
    };
    constexpr Cell kCells[] = {
        {"Idle", "0 %", "cpu", 0, Ink::green},
        {"Processor", "7 %", "cpu", 0.07, Ink::green},
        {"Memory", "42 %", "memorychip", 0.42, Ink::purple},
        {"Battery", "78 %", "bolt.fill", 0.78, Ink::teal},
        {"Storage", "96 %", "internaldrive", 0.96, Ink::orange},
        {"Heat", "100 %", "thermometer.medium", 1, Ink::red},
        {"More than all", "130 %", "bolt.circle", 1.3, Ink::blue},
        {"No symbol", "9.87 GB", "", 0.5, Ink::yellow},
    };
    return table(4, forEach(kCells, [](const Cell& cell) {
                     return WidgetRingView{.title = cell.title,
                                           .valueText = cell.value,
                                           .iconName = cell.icon,
                                           .progress = cell.progress,
                                           .activeColor = cell.color}
                         .body();
                 }));
}

}  // namespace

DisplayList neonBarsDim(Stage& stage) {
    return pictureOf(stage, neonBars, kDim);
}

DisplayList neonBarsBright(Stage& stage) {
    return pictureOf(stage, neonBars, kBright);
}

DisplayList ringsDim(Stage& stage) {
    return pictureOf(stage, rings, kDim);
}

DisplayList ringsBright(Stage& stage) {
    return pictureOf(stage, rings, kBright);
}

DisplayList velocityBars(Stage& stage) {
    return pictureOf(stage, [] {
        return column(forEach(std::vector{0.0, 1.0, 1.2, 3.0, 10.0, 30.0, 100.0, 1000.0}, [](double speed) {
            return labelled(decimal(speed, 1) + " MB/s", bar(VelocityBar{speed, Ink::blue}.body(), 6));
        }));
    });
}

DisplayList gaugesGrowing(Stage& stage) {
    const auto body = [] {
        return column(these(
            labelled("90 %", bar(ArdoNeonBar{90, 100, Ink::green}.body())),
            labelled("90 %, spring", bar(ArdoNeonBar{90, 100, Ink::green, true}.body())),
            labelled("100 MB/s", bar(VelocityBar{100, Ink::blue}.body())),
            row(these(
                WidgetRingView{.title = "Eased", .valueText = "80 %", .iconName = "cpu", .progress = 0.8}
                    .body(),
                WidgetRingView{.title = "Sprung",
                               .valueText = "80 %",
                               .iconName = "cpu",
                               .progress = 0.8,
                               .useSpring = true}
                    .body()))));
    };
    return pictureOf(stage, body, 150ms);
}

DisplayList springsOverTheEnd(Stage& stage) {
    const auto body = [] {
        return column(these(labelled("80 %, spring", bar(ArdoNeonBar{80, 100, Ink::purple, true}.body())),
                            labelled("100 MB/s, spring", bar(VelocityBar{100, Ink::blue, true}.body())),
                            labelled("80 %, spring", WidgetRingView{.title = "Sprung",
                                                                    .valueText = "80 %",
                                                                    .iconName = "memorychip",
                                                                    .progress = 0.8,
                                                                    .activeColor = Ink::purple,
                                                                    .useSpring = true}
                                                         .body())));
    };
    return pictureOf(stage, body, 440ms);
}

}  // namespace norvane::gallery
