#include "views/Stack.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "views/StackLayout.h"
#include "views/Update.h"

namespace norvane {
namespace {

constexpr double kLeastPriority = std::numeric_limits<double>::lowest();

class StackNode final : public Node {
 public:
    StackNode(Axis axis, const StackOptions& options, ElementList members)
        : Node(members.takeChildren()), axis_(axis), options_(options) {}

 protected:
    Size fit(TextRuler& ruler, const Proposal& proposal) const override {
        double length = gaps();
        double breadth = 0;
        for (const Size& size : sizes(ruler, proposal)) {
            length += along(axis_, size);
            breadth = std::max(breadth, across(axis_, size));
        }
        return sizeOf(axis_, length, breadth);
    }

    void placeChildren(TextRuler& ruler, const Rect& frame) override {
        const std::vector<Size> all = sizes(ruler, {frame.size.width, frame.size.height});
        const double breadth = across(axis_, frame.size);
        double offset = 0;
        for (std::size_t i = 0; i < all.size(); ++i) {
            const Point at =
                pointOf(axis_, offset, alignedOffset(options_.alignment, across(axis_, all[i]), breadth));
            children()[i].node->place(ruler, {{frame.minX() + at.x, frame.minY() + at.y}, all[i]});
            offset += along(axis_, all[i]) + options_.spacing;
        }
    }

    void take(Node* before, Update& update) override {
        if (before == nullptr) return;
        const auto& last = *static_cast<const StackNode*>(before);
        if (last.axis_ != axis_ || !(last.options_ == options_)) update.layoutChanged();
    }

 private:
    double gaps() const {
        return children().empty() ? 0 : options_.spacing * static_cast<double>(children().size() - 1);
    }

    // What each member takes of a proposal.
    std::vector<Size> sizes(TextRuler& ruler, const Proposal& proposal) const {
        const auto room = along(axis_, proposal);
        const auto breadth = across(axis_, proposal);
        std::vector<std::optional<double>> lengths(children().size());
        if (room) {
            std::vector<LengthRange> ranges;
            ranges.reserve(children().size());
            for (const Child& member : children()) {
                const auto lengthAt = [&](double offered) {
                    return along(axis_, member.node->measure(ruler, proposalOf(axis_, offered, breadth)));
                };
                // What only fills gaps takes what the others leave.
                const double priority = member.node->isSpacer() ? kLeastPriority : member.layoutPriority;
                ranges.push_back({lengthAt(0), lengthAt(Proposal::kMost), priority});
            }
            const std::vector<double> shares = sharedOut(*room - gaps(), ranges);
            lengths.assign(shares.begin(), shares.end());
        }
        std::vector<Size> all;
        all.reserve(children().size());
        for (std::size_t i = 0; i < children().size(); ++i) {
            const Node& member = *children()[i].node;
            const Size size = member.measure(ruler, proposalOf(axis_, lengths[i], breadth));
            all.push_back(member.isSpacer() ? sizeOf(axis_, along(axis_, size), 0) : size);
        }
        if (room) spreadSpacers(*room - gaps(), all);
        return all;
    }

    // A text that breaks takes less than it was given: what it leaves goes to what fills gaps.
    void spreadSpacers(double room, std::vector<Size>& all) const {
        std::size_t spacers = 0;
        for (std::size_t i = 0; i < all.size(); ++i) {
            room -= along(axis_, all[i]);
            spacers += children()[i].node->isSpacer() ? 1 : 0;
        }
        if (spacers == 0 || !(room > 0) || std::isinf(room)) return;
        for (std::size_t i = 0; i < all.size(); ++i) {
            if (!children()[i].node->isSpacer()) continue;
            all[i] = sizeOf(axis_, along(axis_, all[i]) + room / static_cast<double>(spacers), 0);
        }
    }

    Axis axis_;
    StackOptions options_;
};

}  // namespace

Element stack(Axis axis, const StackOptions& options, ElementList members) {
    return Element(std::make_unique<StackNode>(axis, options, std::move(members)));
}

}  // namespace norvane
