#include "views/Spacer.h"

#include <algorithm>
#include <memory>

#include "views/Update.h"

namespace norvane {
namespace {

class SpacerNode final : public Node {
 public:
    explicit SpacerNode(double least) : least_(least) {}

    bool isSpacer() const override { return true; }

 protected:
    Size fit(TextRuler&, const Proposal& proposal) const override {
        return {std::max(proposal.width.value_or(0), least_), std::max(proposal.height.value_or(0), least_)};
    }
    void take(Node* before, Update& update) override {
        const auto* last = static_cast<const SpacerNode*>(before);
        if (last != nullptr && last->least_ != least_) update.layoutChanged();
    }

 private:
    double least_;
};

}  // namespace

Element spacer(double least) {
    return Element(std::make_unique<SpacerNode>(least));
}

}  // namespace norvane
