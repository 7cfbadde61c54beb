#include "views/Stack.h"

#include <algorithm>
#include <cstddef>
#include <deque>
#include <memory>
#include <utility>

#include "views/SceneBuilder.h"
#include "views/StackLayout.h"

namespace norvane {
namespace {

class StackNode final : public Node {
 public:
    StackNode(Axis axis, const StackOptions& options, std::vector<Element> members)
        : axis_(axis), options_(options) {
        members_.reserve(members.size());
        for (Element& member : members)
            members_.push_back(std::move(member).take());
    }

    Size measure(TextRuler& ruler, const Proposal& proposal) const override {
        double length = gaps();
        double breadth = 0;
        for (const Size& size : sizes(ruler, proposal)) {
            length += along(axis_, size);
            breadth = std::max(breadth, across(axis_, size));
        }
        return sizeOf(axis_, length, breadth);
    }

    void place(TextRuler& ruler, const Rect& frame) override {
        const std::vector<Size>& all = sizes(ruler, {frame.size.width, frame.size.height});
        const double breadth = across(axis_, frame.size);
        double offset = 0;
        for (std::size_t i = 0; i < members_.size(); ++i) {
            const Point at =
                pointOf(axis_, offset, alignedOffset(options_.alignment, across(axis_, all[i]), breadth));
            members_[i]->place(ruler, {{frame.minX() + at.x, frame.minY() + at.y}, all[i]});
            offset += along(axis_, all[i]) + options_.spacing;
        }
    }

    void build(SceneBuilder& scene) const override {
        for (std::size_t i = 0; i < members_.size(); ++i)
            scene.child(i, *members_[i]);
    }

 private:
    double gaps() const {
        return members_.empty() ? 0 : options_.spacing * static_cast<double>(members_.size() - 1);
    }

    // What each member takes of a proposal. Worked out once for each proposal: a stack in a stack would
    // otherwise be asked again by every level above it, three times by each.
    const std::vector<Size>& sizes(TextRuler& ruler, const Proposal& proposal) const {
        for (const auto& [known, all] : known_) {
            if (known == proposal) return all;
        }
        if (known_.size() >= kMostKnown) known_.pop_front();
        return known_.emplace_back(proposal, worked(ruler, proposal)).second;
    }

    std::vector<Size> worked(TextRuler& ruler, const Proposal& proposal) const {
        const auto room = along(axis_, proposal);
        const auto breadth = across(axis_, proposal);
        std::vector<std::optional<double>> lengths(members_.size());
        if (room) {
            std::vector<LengthRange> ranges;
            ranges.reserve(members_.size());
            for (const NodePointer& member : members_) {
                const auto lengthAt = [&](double offered) {
                    return along(axis_, member->measure(ruler, proposalOf(axis_, offered, breadth)));
                };
                ranges.push_back({.least = lengthAt(0), .most = lengthAt(Proposal::kMost)});
            }
            const std::vector<double> shares = sharedOut(*room - gaps(), ranges);
            lengths.assign(shares.begin(), shares.end());
        }
        std::vector<Size> all;
        all.reserve(members_.size());
        for (std::size_t i = 0; i < members_.size(); ++i) {
            all.push_back(members_[i]->measure(ruler, proposalOf(axis_, lengths[i], breadth)));
        }
        return all;
    }

    Axis axis_;
    StackOptions options_;
    // More proposals than one round of layout makes; a size that is animated brings a new one with each
    // frame.
    static constexpr std::size_t kMostKnown = 8;

    std::vector<NodePointer> members_;
    mutable std::deque<std::pair<Proposal, std::vector<Size>>> known_;
};

}  // namespace

Element stack(Axis axis, const StackOptions& options, std::vector<Element> members) {
    return Element(std::make_unique<StackNode>(axis, options, std::move(members)));
}

}  // namespace norvane
