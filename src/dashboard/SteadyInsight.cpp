#include "dashboard/SteadyInsight.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "drawing/NamedFonts.h"
#include "insight/VerbalStabiliser.h"
#include "views/Stack.h"
#include "views/Stateful.h"
#include "views/Text.h"

namespace norvane {
namespace {

// A sentence is shown whole before anything else gets room.
constexpr double kSentencePriority = 1;

}  // namespace

Element insightLines(std::string_view text, bool isSplit) {
    const TextStyle style{.font = font::system(11), .lineSpacing = 1.5};
    std::vector<Element> lines;
    while (isSplit && !text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        if (end > 0) lines.push_back(norvane::text(std::string(text.substr(0, end)), style, Ink::secondary));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    if (!isSplit) lines.push_back(norvane::text(std::string(text), style, Ink::secondary));
    return vstack({.alignment = Alignment::start, .spacing = 2}, std::move(lines))
        .layoutPriority(kSentencePriority);
}

Element SteadyInsight::body() const {
    return stateful<VerbalStabiliser>(
               {},
               [view = *this](const State<VerbalStabiliser>& stabiliser) {
                   return insightLines(stabiliser->displayed(view.insight()), view.isSplit)
                       .onAppear([stabiliser, view] {
                           stabiliser.change(
                               [&](VerbalStabiliser& steady) { steady.appear(view.insight()); });
                       })
                       .onChange(view.timestamp, [stabiliser, view] {
                           stabiliser.change(
                               [&](VerbalStabiliser& steady) { steady.update(view.insight()); });
                       });
               })
        .layoutPriority(kSentencePriority);
}

}  // namespace norvane
