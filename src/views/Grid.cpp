#include "views/Grid.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <memory>
#include <utility>

#include "views/GridLayout.h"
#include "views/Update.h"

namespace norvane {
namespace {

class GridNode final : public Node {
 public:
    GridNode(const GridOptions& options, ElementList members)
        : Node(members.takeChildren()), options_(options) {}

 protected:
    Size fit(TextRuler& ruler, const Proposal& proposal) const override {
        const double width = widthFor(ruler, proposal.width);
        double height = 0;
        const std::vector<double> rows = rowsIn(ruler, width);
        for (const double row : rows)
            height += row;
        if (rows.size() > 1) height += options_.rowSpacing * static_cast<double>(rows.size() - 1);
        return {width, height};
    }

    void placeChildren(TextRuler& ruler, const Rect& frame) override {
        const double column = columnWidth(frame.size.width, options_.columns, options_.columnSpacing);
        const std::vector<double> rows = rowsIn(ruler, frame.size.width);
        const auto perRow = static_cast<std::size_t>(std::max(options_.columns, 1));
        double top = frame.minY();
        for (std::size_t i = 0; i < children().size(); ++i) {
            if (i > 0 && i % perRow == 0) top += rows[i / perRow - 1] + options_.rowSpacing;
            const Size size = children()[i].node->measure(ruler, {column, std::nullopt});
            const double left =
                frame.minX() + static_cast<double>(i % perRow) * (column + options_.columnSpacing);
            children()[i].node->place(
                ruler, {{left + alignedOffset(options_.alignment, size.width, column), top}, size});
        }
    }

    void take(Node* before, Update& update) override {
        const auto* last = static_cast<const GridNode*>(before);
        if (last != nullptr && !(last->options_ == options_)) update.layoutChanged();
    }

 private:
    // What is offered; where nothing or everything is, as much as the widest member wants in each column.
    double widthFor(TextRuler& ruler, std::optional<double> offered) const {
        if (offered && std::isfinite(*offered)) return *offered;
        double widest = 0;
        for (const Child& member : children())
            widest = std::max(widest, member.node->measure(ruler, {}).width);
        const int columns = std::max(options_.columns, 1);
        return widest * columns + options_.columnSpacing * (columns - 1);
    }
    std::vector<double> rowsIn(TextRuler& ruler, double width) const {
        const double column = columnWidth(width, options_.columns, options_.columnSpacing);
        std::vector<double> heights;
        heights.reserve(children().size());
        for (const Child& member : children())
            heights.push_back(member.node->measure(ruler, {column, std::nullopt}).height);
        return rowHeights(heights, options_.columns);
    }

    GridOptions options_;
};

}  // namespace

Element grid(const GridOptions& options, std::vector<Element> members) {
    return Element(std::make_unique<GridNode>(options, listOf(std::move(members))));
}

}  // namespace norvane
