#include <memory>
#include <utility>

#include "TreePlan.h"
#include "views/Button.h"
#include "views/DepthStack.h"
#include "views/Divider.h"
#include "views/Grid.h"
#include "views/Image.h"
#include "views/ScrollArea.h"
#include "views/ShapeElement.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/Stateful.h"
#include "views/Symbol.h"
#include "views/Text.h"

namespace norvane {
namespace {

constexpr std::array kSymbols{"leaf.fill", "cpu", "minus", "pin", "of no such name"};
constexpr std::array kImages{"NorvaneLogo", "MenuIconNormal", "of no such name"};
constexpr unsigned kInks = static_cast<unsigned>(Ink::purple) + 1;

// One plan's way to its element: what its choices and numbers may mean.
struct Making {
    const TreePlan& plan;
    const TreeHandler& handler;
    const std::array<unsigned, 6>& c = plan.choices;
    const std::array<double, 8>& n = plan.numbers;

    std::vector<Element> members() const {
        return forEach(plan.members, [this](const TreePlan& member) { return member.element(handler); });
    }
    Element member(std::size_t number = 0) const {
        return number < plan.members.size() ? plan.members[number].element(handler) : Element::none();
    }
    std::function<void()> happening() const {
        return [handler = handler, what = c[0]] { handler(what); };
    }
    Alignment alignment(std::size_t at) const { return static_cast<Alignment>(c[at] % 3); }
    StackOptions stackOptions() const { return {.alignment = alignment(0), .spacing = n[0] * 12 - 2}; }
    Color color(std::size_t at) const { return {n[at], n[at + 1], n[at + 2], 0.2 + n[at + 3]}; }
    Paint paint(std::size_t at) const {
        const unsigned which = c[at] % (kInks + 4);
        const Paint plain = which < kInks ? Paint(static_cast<Ink>(which)) : Paint(color(2));
        return c[at] % 2 == 0 ? plain : plain.withOpacity(n[7]);
    }

    TextStyle textStyle() const {
        return {.font = {.size = 6 + n[0] * 12,
                         .weight = static_cast<FontWeight>(c[2] % 4),
                         .design = static_cast<FontDesign>(c[3] % 2),
                         .monospacedDigits = c[3] % 3 == 0},
                .lineSpacing = n[1] * 4,
                .alignment = static_cast<TextAlignment>(c[4] % 3),
                .lineLimit = static_cast<int>(c[5] % 5) - 1};
    }

    FrameSize frameSize() const {
        const auto sometimes = [this](unsigned bit, double length) {
            return (c[0] >> bit) % 2 == 1 ? std::optional(length) : std::nullopt;
        };
        const auto most = [this](std::size_t at, double all) {
            return n[at] > 0.8 ? Proposal::kMost : n[at] * all;
        };
        return {.width = sometimes(0, n[0] * 90),
                .height = sometimes(1, n[1] * 60),
                .minWidth = sometimes(2, n[2] * 60).value_or(0),
                .minHeight = sometimes(3, n[3] * 30).value_or(0),
                .maxWidth = sometimes(4, most(4, 90)),
                .maxHeight = sometimes(5, most(5, 60)),
                .horizontal = alignment(1),
                .vertical = alignment(2)};
    }

    Outline outline() const {
        const auto corners = c[1] % 2 == 0 ? CornerStyle::circular : CornerStyle::continuous;
        const unsigned which = c[0] % 6;
        if (which == 0) return Outline::rectangle();
        if (which == 1) return Outline::roundedRectangle(n[2] * 14, corners);
        if (which == 2) return Outline::capsule();
        if (which == 3) return Outline::circle();
        if (which == 4) return Outline::arc(n[2] - 0.3, n[3] * 1.4);
        return Outline::of(std::make_shared<const Path>(
            Path{{Path::MoveTo{{0, n[2] * 20}}, Path::LineTo{{n[3] * 30, n[4] * 20}},
                  Path::CurveTo{{20, n[5] * 20}, {25, -4}, {n[6] * 40, 10}}}}));
    }

    FillStyle fillStyle(std::size_t at) const {
        if (c[at] % 3 != 0) return paint(at);
        using Direction = GradientDirection;
        return {paint(at), paint((at + 1) % 5),
                c[at] % 2 == 0 ? Direction::topToBottom : Direction::leadingToTrailing};
    }

    Element shaped() const {
        ShapeStyle style;
        if (c[2] % 4 != 0) style.fill = fillStyle(2);
        const StrokeStyle line{.width = n[6] * 5,
                               .cap = static_cast<LineCap>(c[3] % 2),
                               .join = static_cast<LineJoin>(c[4] % 2),
                               .dashOn = c[4] % 3 == 0 ? n[5] * 6 : 0,
                               .dashOff = n[4] * 4};
        if (c[3] % 3 == 0) style.stroke = Stroke{fillStyle(3), line};
        if (c[4] % 6 / 3 == 1)
            style.shadows.push_back({.paint = paint(4),
                                     .radius = n[5] * 10,
                                     .offset = {n[6] * 6 - 3, n[7] * 6 - 3},
                                     .isOutsideOnly = c[4] % 2 == 0});
        if (c[5] % 3 == 0) style.leadingPart = n[7];
        if (c[5] % 5 == 0) style.snapping = Snapping::toPixels;
        Element made = shape(outline(), style);
        if (c[5] % 4 == 0) return made;
        return std::move(made).frame({.width = n[0] * 60, .height = n[1] * 40});
    }

    // Counts its presses, and shows what is inside of it after every other one.
    Element component() const {
        const auto kept = std::make_shared<const TreePlan>(plan);
        return stateful<unsigned>(c[0] % 2, [kept, handler = handler](const State<unsigned>& count) {
            const Making making{*kept, handler};
            const unsigned presses = *count;
            const auto press = [count] {
                count.animate(Animation::spring(0.3, 0.6), [](unsigned& number) { ++number; });
            };
            const auto pressLater = [count, isWanted = kept->choices[1] % 3 == 0] {
                if (isWanted) count.later([count] { count.change([](unsigned& number) { ++number; }); });
            };
            return vstack(making.stackOptions(), button("more", text(std::to_string(presses), {}), press),
                          when(presses % 2 == 1, [&] { return making.member(); }))
                .onAppear(pressLater);
        });
    }

    std::function<void(bool isOver)> hovering() const {
        return [handler = handler, what = c[0]](bool isOver) { handler(what + (isOver ? 1 : 0)); };
    }

    Accessible told() const {
        return {.role = static_cast<AccessibleRole>(c[1] % 13),
                .name = plan.words,
                .value = plan.words,
                .isOn = c[2] % 2 == 0,
                .isExpanded = c[2] % 3 == 0,
                .isEnabled = c[2] % 5 != 0,
                .actions = {{"press", happening()}, {"increment", happening()}},
                .containsMore = c[3] % 2 == 0};
    }
};

// By kind; the order is that of TreePlan's kinds.
using M = const Making&;
constexpr std::array<Element (*)(M), TreePlan::kEnd> kKinds{
    [](M m) { return text(m.plan.words, m.textStyle(), m.paint(0)); },
    [](M m) { return symbol(kSymbols[m.c[1] % kSymbols.size()], m.textStyle().font, m.paint(0)); },
    [](M m) {
        return image(kImages[m.c[1] % kImages.size()], {m.n[0] * 40, m.n[1] * 40});
    },
    [](M m) { return m.shaped(); },
    [](M m) { return spacer(m.n[0] * 10); },
    [](M) { return divider(); },
    [](M m) { return prominentButton(m.plan.words, m.n[0] * 80, m.color(1), m.happening()); },
    [](M) { return Element::none(); },
    // Lists
    [](M m) { return hstack(m.stackOptions(), m.members()); },
    [](M m) { return vstack(m.stackOptions(), m.members()); },
    [](M m) { return zstack({.horizontal = m.alignment(0), .vertical = m.alignment(1)}, m.members()); },
    [](M m) {
        const int columns = static_cast<int>(m.c[0] % 6) - 1;
        return grid({columns, m.n[0] * 6, m.n[1] * 6, m.alignment(1)}, m.members());
    },
    // Around one
    [](M m) { return scrollArea(m.member(), m.n[0] * 60); },
    [](M m) {
        return button(m.plan.words, m.member(), m.happening(),
                      {.radius = m.n[0] * 8, .isEnabled = m.c[0] % 5 != 4});
    },
    [](M m) { return m.component(); },
    [](M m) {
        return m.member().padding({m.n[0] * 8, m.n[1] * 8, m.n[2] * 8, m.n[3] * 8});
    },
    [](M m) { return m.member().frame(m.frameSize()); },
    // With another beside it
    [](M m) { return m.member().background(m.member(1)); },
    [](M m) { return m.member().overlay(m.member(1)); },
    // Around one, too
    [](M m) { return m.member().opacity(m.n[0] * 1.2); },
    [](M m) {
        return m.member().offset({m.n[0] * 40 - 20, m.n[1] * 40 - 20});
    },
    [](M m) { return m.member().scaled(0.4 + m.n[0]); },
    [](M m) { return m.member().clipped(m.n[0] * 12); },
    [](M m) { return m.member().condensedToFit(); },
    [](M m) { return m.member().onHover(m.hovering()); },
    [](M m) { return m.member().onAppear(m.happening()); },
    [](M m) { return m.member().onChange(m.c[1], m.happening()); },
    [](M m) { return m.member().accessible(m.told()); },
    [](M m) { return m.member().accessibleHidden(); },
};

}  // namespace

Element TreePlan::element(const TreeHandler& handler) const {
    const std::array kinds{Transition::opacity(),
                           Transition::none(),
                           Transition::move(Edge::top),
                           Transition::move(Edge::leading),
                           Transition::move(Edge::bottom),
                           Transition::move(Edge::trailing).withOpacity(),
                           Transition::move(Edge::top).withOpacity()};
    Element made = kKinds[kind](Making{*this, handler});
    if (id) made = std::move(made).id(*id);
    return std::move(made).transition(kinds[transition % kinds.size()]).layoutPriority(priority);
}

}  // namespace norvane
