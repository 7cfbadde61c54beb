#include "TreePlan.h"

#include <memory>
#include <utility>

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

// One plan's way to its element.
class Making {
 public:
    Making(const TreePlan& plan, const TreeHandler& handler) : plan_(plan), handler_(handler) {}

    Element element() const {
        Element made = bare();
        if (plan_.id) made = std::move(made).id(*plan_.id);
        return std::move(made).transition(transition()).layoutPriority(plan_.priority);
    }

 private:
    using Kind = TreePlan::Kind;

    Element bare() const {
        const Kind kind = plan_.kind;
        if (kind == Kind::text) return text(plan_.words, textStyle(), paint(0));
        if (kind == Kind::symbol)
            return symbol(kSymbols[choice(1) % kSymbols.size()], textStyle().font, paint(0));
        if (kind == Kind::image)
            return image(kImages[choice(1) % kImages.size()], {number(0) * 40, number(1) * 40});
        if (kind == Kind::shape) {
            Element made = shape(outline(), shapeStyle());
            if (choice(5) % 4 == 0) return made;
            return std::move(made).frame({.width = number(0) * 60, .height = number(1) * 40});
        }
        if (kind == Kind::spacer) return spacer(number(0) * 10);
        if (kind == Kind::divider) return divider();
        if (kind == Kind::prominentButton)
            return prominentButton(plan_.words, number(0) * 80, color(1), happening());
        if (kind == Kind::none) return Element::none();
        if (kind == Kind::row) return hstack(stackOptions(), members());
        if (kind == Kind::column) return vstack(stackOptions(), members());
        if (kind == Kind::depth)
            return zstack({.horizontal = alignment(0), .vertical = alignment(1)}, members());
        if (kind == Kind::grid)
            return grid({.columns = static_cast<int>(choice(0) % 6) - 1,
                         .columnSpacing = number(0) * 6,
                         .rowSpacing = number(1) * 6,
                         .alignment = alignment(1)},
                        members());
        if (kind == Kind::scroll) return scrollArea(member(0), number(0) * 60);
        if (kind == Kind::button)
            return button(plan_.words, member(0), happening(),
                          {.radius = number(0) * 8, .isEnabled = choice(0) % 5 != 4});
        if (kind == Kind::component) return component();
        return wrapped(member(0));
    }

    Element wrapped(Element inner) const {
        const Kind kind = plan_.kind;
        if (kind == Kind::padding)
            return std::move(inner).padding({number(0) * 8, number(1) * 8, number(2) * 8, number(3) * 8});
        if (kind == Kind::frame) return std::move(inner).frame(frameSize());
        if (kind == Kind::background) return std::move(inner).background(member(1));
        if (kind == Kind::overlay) return std::move(inner).overlay(member(1));
        if (kind == Kind::opacity) return std::move(inner).opacity(number(0) * 1.2);
        if (kind == Kind::offset) return std::move(inner).offset({number(0) * 40 - 20, number(1) * 40 - 20});
        if (kind == Kind::scaled) return std::move(inner).scaled(0.4 + number(0));
        if (kind == Kind::clipped) return std::move(inner).clipped(number(0) * 12);
        if (kind == Kind::condensed) return std::move(inner).condensedToFit();
        if (kind == Kind::hover)
            return std::move(inner).onHover(
                [handler = handler_, what = choice(0)](bool isOver) { handler(what + (isOver ? 1 : 0)); });
        if (kind == Kind::appear) return std::move(inner).onAppear(happening());
        if (kind == Kind::change) return std::move(inner).onChange(choice(1), happening());
        if (kind == Kind::told) return std::move(inner).accessible(told());
        return std::move(inner).accessibleHidden();
    }

    // Counts its presses, and shows what is inside of it after every other one.
    Element component() const {
        const auto plan = std::make_shared<const TreePlan>(plan_);
        return stateful<unsigned>(choice(0) % 2, [plan, handler = handler_](const State<unsigned>& count) {
            const Making making(*plan, handler);
            const unsigned presses = *count;
            const auto press = [count] {
                count.animate(Animation::spring(0.3, 0.6), [](unsigned& number) { ++number; });
            };
            const auto pressLater = [count, isWanted = plan->choices[1] % 3 == 0] {
                if (isWanted) count.later([count] { count.change([](unsigned& number) { ++number; }); });
            };
            return vstack(making.stackOptions(), button("more", text(std::to_string(presses), {}), press),
                          when(presses % 2 == 1, [&] { return making.member(0); }))
                .onAppear(pressLater);
        });
    }

    std::vector<Element> members() const {
        return forEach(plan_.members, [this](const TreePlan& plan) { return elementOf(plan, handler_); });
    }
    Element member(std::size_t number) const {
        return number < plan_.members.size() ? elementOf(plan_.members[number], handler_) : Element::none();
    }
    std::function<void()> happening() const {
        return [handler = handler_, what = choice(0)] { handler(what); };
    }

    double number(std::size_t index) const { return plan_.numbers[index]; }
    unsigned choice(std::size_t index) const { return plan_.choices[index]; }

    Alignment alignment(std::size_t index) const { return static_cast<Alignment>(choice(index) % 3); }
    StackOptions stackOptions() const { return {.alignment = alignment(0), .spacing = number(0) * 12 - 2}; }

    Color color(std::size_t index) const {
        return {number(index), number(index + 1), number(index + 2), 0.2 + number(index + 3)};
    }
    Paint paint(std::size_t index) const {
        const unsigned which = choice(index) % (kInks + 4);
        const Paint plain = which < kInks ? Paint(static_cast<Ink>(which)) : Paint(color(2));
        return choice(index) % 2 == 0 ? plain : plain.withOpacity(number(7));
    }

    TextStyle textStyle() const {
        return {.font = {.size = 6 + number(0) * 12,
                         .weight = static_cast<FontWeight>(choice(2) % 4),
                         .design = static_cast<FontDesign>(choice(3) % 2),
                         .monospacedDigits = choice(3) % 3 == 0},
                .lineSpacing = number(1) * 4,
                .alignment = static_cast<TextAlignment>(choice(4) % 3),
                .lineLimit = static_cast<int>(choice(5) % 5) - 1};
    }

    FrameSize frameSize() const {
        const auto sometimes = [this](unsigned bit, double length) {
            return (choice(0) >> bit) % 2 == 1 ? std::optional(length) : std::nullopt;
        };
        return {.width = sometimes(0, number(0) * 90),
                .height = sometimes(1, number(1) * 60),
                .minWidth = sometimes(2, number(2) * 60).value_or(0),
                .minHeight = sometimes(3, number(3) * 30).value_or(0),
                .maxWidth = sometimes(4, number(4) > 0.8 ? Proposal::kMost : number(4) * 90),
                .maxHeight = sometimes(5, number(5) > 0.8 ? Proposal::kMost : number(5) * 60),
                .horizontal = alignment(1),
                .vertical = alignment(2)};
    }

    Outline outline() const {
        const unsigned which = choice(0) % 6;
        if (which == 0) return Outline::rectangle();
        const auto corners = choice(1) % 2 == 0 ? CornerStyle::circular : CornerStyle::continuous;
        if (which == 1) return Outline::roundedRectangle(number(2) * 14, corners);
        if (which == 2) return Outline::capsule();
        if (which == 3) return Outline::circle();
        if (which == 4) return Outline::arc(number(2) - 0.3, number(3) * 1.4);
        return Outline::of(std::make_shared<const Path>(
            Path{{Path::MoveTo{{0, number(2) * 20}}, Path::LineTo{{number(3) * 30, number(4) * 20}},
                  Path::CurveTo{{20, number(5) * 20}, {25, -4}, {number(6) * 40, 10}}}}));
    }

    FillStyle fillStyle(std::size_t index) const {
        if (choice(index) % 3 != 0) return paint(index);
        return {
            paint(index), paint((index + 1) % 5),
            choice(index) % 2 == 0 ? GradientDirection::topToBottom : GradientDirection::leadingToTrailing};
    }

    ShapeStyle shapeStyle() const {
        ShapeStyle style;
        if (choice(2) % 4 != 0) style.fill = fillStyle(2);
        if (choice(3) % 3 == 0) {
            style.stroke = Stroke{fillStyle(3),
                                  {.width = number(6) * 5,
                                   .cap = static_cast<LineCap>(choice(3) % 2),
                                   .join = static_cast<LineJoin>(choice(4) % 2),
                                   .dashOn = choice(4) % 3 == 0 ? number(5) * 6 : 0,
                                   .dashOff = number(4) * 4}};
        }
        for (unsigned i = 0; i < choice(4) % 6 / 3; ++i) {
            style.shadows.push_back({.paint = paint(4),
                                     .radius = number(5) * 10,
                                     .offset = {number(6) * 6 - 3, number(7) * 6 - 3},
                                     .isOutsideOnly = choice(4) % 2 == 0});
        }
        if (choice(5) % 3 == 0) style.leadingPart = number(7);
        if (choice(5) % 5 == 0) style.snapping = Snapping::toPixels;
        return style;
    }

    Transition transition() const {
        const std::array kinds{Transition::opacity(),
                               Transition::none(),
                               Transition::move(Edge::top),
                               Transition::move(Edge::leading),
                               Transition::move(Edge::bottom),
                               Transition::move(Edge::trailing).withOpacity(),
                               Transition::move(Edge::top).withOpacity()};
        return kinds[plan_.transition % kinds.size()];
    }

    Accessible told() const {
        return {.role = static_cast<AccessibleRole>(choice(1) % 13),
                .name = plan_.words,
                .value = plan_.words,
                .isOn = choice(2) % 2 == 0,
                .isExpanded = choice(2) % 3 == 0,
                .isEnabled = choice(2) % 5 != 0,
                .actions = {{"press", happening()}, {"increment", happening()}},
                .containsMore = choice(3) % 2 == 0};
    }

    const TreePlan& plan_;
    const TreeHandler& handler_;
};

}  // namespace

std::size_t TreePlan::count() const {
    std::size_t all = 1;
    for (const TreePlan& member : members)
        all += member.count();
    return all;
}

TreePlan& TreePlan::at(std::size_t number) {
    if (number == 0) return *this;
    --number;
    for (TreePlan& member : members) {
        const std::size_t inside = member.count();
        if (number < inside) return member.at(number);
        number -= inside;
    }
    return *this;
}

Element elementOf(const TreePlan& plan, const TreeHandler& handler) {
    return Making(plan, handler).element();
}

}  // namespace norvane
