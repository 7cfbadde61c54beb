#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/MainQueue.h"
#include "platform/Observers.h"
#include "platform/UserDefaults.h"

namespace norvane {

// A defaults store in memory that remembers what was written. It is not locked: everything runs on one
// thread.
class ScriptedUserDefaults final : public UserDefaults {
 public:
    explicit ScriptedUserDefaults(MainQueue& mainQueue) : mainQueue_(mainQueue) {}

    std::optional<DefaultsValue> objectForKey(std::string_view key) const override {
        const auto found = values_.find(key);
        return found == values_.end() ? std::nullopt : std::optional(found->second);
    }
    void setObject(std::string_view key, DefaultsValue value) override {
        written.emplace_back(key);
        changeFromOutside(key, std::move(value));
    }
    void removeObjectForKey(std::string_view key) override {
        const auto found = values_.find(key);
        if (found == values_.end()) return;
        removed.emplace_back(key);
        values_.erase(found);
        tellSoon();
    }
    Cancellation onDidChange(std::function<void()> observer) override {
        return changed_.add(std::move(observer));
    }

    // Another program writes the key: observers are told, nothing is remembered.
    void changeFromOutside(std::string_view key, DefaultsValue value) {
        values_.insert_or_assign(std::string(key), std::move(value));
        tellSoon();
    }

    // The keys written and removed by the application, in order.
    std::vector<std::string> written;
    std::vector<std::string> removed;

 private:
    void tellSoon() {
        if (std::exchange(isToBeTold_, true)) return;
        mainQueue_.async([this] {
            isToBeTold_ = false;
            changed_.tell();
        });
    }

    MainQueue& mainQueue_;
    bool isToBeTold_ = false;
    std::map<std::string, DefaultsValue, std::less<>> values_;
    Observers<> changed_;
};

}  // namespace norvane
