#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

#include "platform/scripted/FixedTextRuler.h"
#include "views/DepthStack.h"
#include "views/Grid.h"
#include "views/LaidOut.h"
#include "views/Spacer.h"
#include "views/Stack.h"
#include "views/Text.h"

namespace norvane {
namespace {

class CountingRuler final : public TextRuler {
 public:
    TextMetrics measure(std::string_view text, const TextStyle& style, double maxWidth) override {
        ++questions;
        return ruler_.measure(text, style, maxWidth);
    }
    int questions = 0;

 private:
    FixedTextRuler ruler_;
};

// How often text is measured in one layout of a tree that is made by wrapping a text over and over.
int questionsFor(const std::function<Element(Element, int level)>& wrap, int levels) {
    Element element = text("one two three four", kTen);
    for (int level = 0; level < levels; ++level)
        element = wrap(std::move(element), level);
    const auto tree = childrenOf(listOf(std::move(element)));
    CountingRuler ruler;
    tree.at(0).node->measure(ruler, {1000, {}});
    tree.at(0).node->place(ruler, {{}, {300, 400}});
    return ruler.questions;
}

TEST(DeepTrees, MeasureEachTextAFewTimesHoweverDeepTheyAre) {
    struct Case {
        const char* name;
        std::function<Element(Element, int)> wrap;
        int textsPerLevel;
    };
    for (const Case& c : {
             Case{"rows and columns in turn",
                  [](Element inner, int level) {
                      return stack(level % 2 == 0 ? Axis::horizontal : Axis::vertical, {.spacing = 1},
                                   listOf(std::move(inner), spacer(), text("x", kTen)));
                  },
                  1},
             Case{"padded frames",
                  [](Element inner, int) {
                      return vstack({}, std::move(inner)
                                            .padding(Insets::all(1))
                                            .frame({.minWidth = 5, .maxWidth = Proposal::kMost}));
                  },
                  0},
             Case{"backgrounds and overlays",
                  [](Element inner, int) {
                      return hstack({},
                                    std::move(inner).background(text("b", kTen)).overlay(text("o", kTen)));
                  },
                  2},
             Case{
                 "depth stacks in rows",
                 [](Element inner, int) { return hstack({}, zstack({}, std::move(inner), text("z", kTen))); },
                 1},
             Case{"grids in columns",
                  [](Element inner, int) {
                      std::vector<Element> members;
                      members.push_back(std::move(inner));
                      members.push_back(text("g", kTen));
                      return vstack({}, grid({.columns = 2}, std::move(members)));
                  },
                  1},
             Case{"narrowed rows",
                  [](Element inner, int) { return vstack({}, std::move(inner).condensedToFit()); }, 0},
         }) {
        constexpr int kLevels = 200;
        const int questions = questionsFor(c.wrap, kLevels);
        EXPECT_LE(questions, 20 * (1 + kLevels * c.textsPerLevel)) << c.name;
        EXPECT_GT(questions, 0) << c.name;
    }
}

}  // namespace
}  // namespace norvane
