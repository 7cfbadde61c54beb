#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "views/ComponentNode.h"
#include "views/State.h"

namespace norvane {

template <typename Value>
class StatefulNode final : public ComponentNode {
 public:
    StatefulNode(Value initial, std::function<Element(const State<Value>&)> body)
        : initial_(std::move(initial)), body_(std::move(body)) {}

 protected:
    using Cell = typename State<Value>::Cell;

    std::shared_ptr<StateCell> makeCell() override { return std::make_shared<Cell>(std::move(initial_)); }
    Element body(const std::shared_ptr<StateCell>& cell) override {
        return body_(State<Value>(std::static_pointer_cast<Cell>(cell)));
    }

 private:
    Value initial_;
    std::function<Element(const State<Value>&)> body_;
};

// A part of a screen with state of its own, which lasts for as long as the part is in the screen's tree: it
// begins as `initial`, and each change has the body evaluated again, by itself.
//
//     stateful<Count>({}, [](const State<Count>& count) {
//         return button("More", text(decimal(count->number, 0), style),
//                       [count] { count.change([](Count& now) { ++now.number; }); });
//     })
template <typename Value>
Element stateful(Value initial, std::function<Element(const State<Value>&)> body) {
    return Element(std::make_unique<StatefulNode<Value>>(std::move(initial), std::move(body)));
}

}  // namespace norvane
