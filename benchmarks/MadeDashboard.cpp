#include "MadeDashboard.h"

#include <numeric>
#include <vector>

#include "views/Button.h"
#include "views/DepthStack.h"
#include "views/Divider.h"
#include "views/Grid.h"
#include "views/ShapeElement.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/Symbol.h"
#include "views/Text.h"

namespace norvane {
namespace {

constexpr TextStyle kTitle{.font = {.size = 15, .weight = FontWeight::semibold}};
constexpr TextStyle kFigure{.font = {.size = 13, .weight = FontWeight::medium, .monospacedDigits = true}};
constexpr TextStyle kCaption{.font = {.size = 10}};
constexpr auto kFrame = std::chrono::milliseconds(33);

std::vector<int> upTo(int count) {
    std::vector<int> numbers(static_cast<std::size_t>(count));
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

Element panel(Element contents) {
    return std::move(contents)
        .padding(Insets::all(10))
        .background(
            shape(Outline::roundedRectangle(10), {.fill = Paint(Ink::controlBackgroundColor).withOpacity(0.6),
                                                  .stroke = Stroke{Ink::separator, {.width = 1}}}));
}

}  // namespace

MadeDashboard::MadeDashboard(TextRuler& ruler)
    : view_([this] { return body(); }, machine_.platform(ruler)), at_(machine_.time.monotonic()) {
    view_.appear();
    nextFrame();
}

void MadeDashboard::nextSecond() {
    view_.change([this] { second_ = (second_ + 1) % 97; });
}

void MadeDashboard::breathe() {
    view_.animate(Animation::easeInOut(0.5).foreverThereAndBack(), [this] { isOut_ = true; });
}

DisplayList MadeDashboard::nextFrame() {
    at_ += kFrame;
    return view_.displayList(fittingSize(), at_);
}

std::string MadeDashboard::figure(int number) const {
    return std::to_string((second_ * 7 + number * 13) % 100);
}

Element MadeDashboard::ring(double share, double side) const {
    const Stroke line{Ink::green, {.width = 3, .cap = LineCap::round}};
    return zstack({}, shape(Outline::arc(0, 1), {.stroke = Stroke{Ink::separator, {.width = 3}}}),
                  shape(Outline::arc(0, share), {.stroke = line}))
        .frame({.width = side, .height = side});
}

Element MadeDashboard::header() const {
    const auto capsule = [this](int number) {
        return shape(Outline::capsule(),
                     {.fill = Ink::green, .shadows = {{.paint = Ink::green, .radius = isOut_ ? 8.0 : 3.0}}})
            .frame({.width = 18, .height = 6})
            .id(std::to_string(number));
    };
    const Stroke line{Ink::orange, {.width = 2}};
    const auto glowingRing = [&](int number) {
        return shape(Outline::circle(),
                     {.stroke = line, .shadows = {{.paint = Ink::orange, .radius = isOut_ ? 6.0 : 2.0}}})
            .frame({.width = 26, .height = 26})
            .id("ring" + std::to_string(number));
    };
    return hstack({.spacing = 8}, symbol("cpu", kTitle.font),
                  vstack({.alignment = Alignment::start, .spacing = 2}, text("This machine", kTitle),
                         text("Two days without a restart", kCaption, Ink::secondary)),
                  spacer(), hstack({.spacing = 6}, forEach(upTo(5), capsule)),
                  hstack({.spacing = 6}, forEach(upTo(2), glowingRing)));
}

Element MadeDashboard::pod(int number) const {
    return button("Pod " + std::to_string(number),
                  panel(vstack({.spacing = 6},
                               hstack({.spacing = 4}, symbol("memorychip", kCaption.font, Ink::secondary),
                                      text("Pod", kCaption, Ink::secondary), spacer()),
                               ring((second_ + number) % 20 / 20.0, 48), text(figure(number) + " %", kFigure))
                            .frame({.maxWidth = Proposal::kMost})),
                  [] {}, {.radius = 10});
}

Element MadeDashboard::cell(int number) const {
    return vstack({.alignment = Alignment::start, .spacing = 2}, text("What it is", kCaption, Ink::secondary),
                  text(figure(number) + " GB", kFigure), divider())
        .frame({.maxWidth = Proposal::kMost});
}

Element MadeDashboard::core(int number) const {
    return vstack({.spacing = 2}, ring((second_ * 3 + number) % 20 / 20.0, 22),
                  text(figure(number), kCaption, Ink::secondary));
}

Element MadeDashboard::body() const {
    const auto cellOf = [this](int number) { return cell(number); };
    const auto coreOf = [this](int number) { return core(number); };
    const auto podOf = [this](int number) { return pod(number); };
    Element bar =
        shape(Outline::capsule(), {.fill = {Ink::blue, Ink::teal, GradientDirection::leadingToTrailing},
                                   .leadingPart = second_ / 97.0})
            .frame({.maxWidth = Proposal::kMost})
            .frame({.height = 8})
            .background(shape(Outline::capsule(), {.fill = Ink::separator}));
    Element details = panel(vstack(
        {.spacing = 10}, grid({.columns = 4, .columnSpacing = 10, .rowSpacing = 8}, forEach(upTo(8), cellOf)),
        std::move(bar),
        text("The processor has had " + figure(3) + " % to do, most of it for one program, and stays cool.",
             kCaption, Ink::secondary),
        grid({.columns = 8, .columnSpacing = 6, .rowSpacing = 8}, forEach(upTo(16), coreOf))));
    return vstack({.spacing = 12}, header(), divider(),
                  text("All is well, and has been for " + figure(1) + " minutes", kFigure),
                  hstack({.spacing = 10}, forEach(upTo(4), podOf)), std::move(details), spacer(),
                  hstack({}, symbol("gearshape", kFigure.font, Ink::secondary), spacer(),
                         button("Quit", text("Quit", kFigure).padding(Insets::all(4)), [] {})))
        .padding(Insets::all(14))
        .frame({.width = kSize.width, .height = kSize.height});
}

}  // namespace norvane
