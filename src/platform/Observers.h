#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Cancellation.h"

namespace norvane {

// Who wants to hear of an event. Main thread only. Observers are told in the order in which they came; one
// may come or go while they are being told: who went is not told any more, who came is told from the next
// event on. The list may go away before its subscriptions, and while it is telling.
template <typename... Arguments>
class Observers {
 public:
    using Observer = std::function<void(const Arguments&...)>;

    [[nodiscard]] Cancellation add(Observer observer) {
        auto entry = std::make_shared<Observer>(std::move(observer));
        list_->push_back(entry);
        return Cancellation([list = std::weak_ptr(list_), entry] {
            *entry = nullptr;  // also silences a round that has the entry already
            if (const auto alive = list.lock()) {
                alive->erase(std::remove(alive->begin(), alive->end(), entry), alive->end());
            }
        });
    }

    std::size_t count() const { return list_->size(); }

    void tell(const Arguments&... arguments) const {
        if (list_->empty()) return;
        const List round = *list_;
        for (const auto& entry : round) {
            if (!*entry) continue;
            const Observer observer = *entry;  // it may end its own subscription while it runs
            observer(arguments...);
        }
    }

 private:
    using List = std::vector<std::shared_ptr<Observer>>;
    std::shared_ptr<List> list_ = std::make_shared<List>();
};

}  // namespace norvane
