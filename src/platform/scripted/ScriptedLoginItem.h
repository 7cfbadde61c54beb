#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/LoginItem.h"
#include "platform/MainQueue.h"
#include "platform/scripted/ScriptedAnswer.h"

namespace norvane {

// A login item that does as asked, until told otherwise. What is asked is done when it is answered: in the
// order of the calls, on the main queue, after `delay`; or once the test lets go of it.
class ScriptedLoginItem final : public LoginItem {
 public:
    enum class Call { status, registerItem, unregisterItem };

    explicit ScriptedLoginItem(MainQueue& mainQueue) : mainQueue_(mainQueue) {}

    void status(std::function<void(int status)> completion) override {
        ask(Call::status, [this, done = std::move(completion)] { done(currentStatus); });
    }
    void registerItem(std::function<void(std::optional<std::string> error)> completion) override {
        ask(Call::registerItem,
            [this, done = std::move(completion)] { done(change(registerError.ask(), kEnabled)); });
    }
    void unregisterItem(std::function<void(std::optional<std::string> error)> completion) override {
        ask(Call::unregisterItem,
            [this, done = std::move(completion)] { done(change(unregisterError.ask(), kNotRegistered)); });
    }

    // From now on no answer sets out, until `letGo`, when all that waited do.
    void hold() { isHeld_ = true; }
    void letGo() {
        isHeld_ = false;
        sendAnswers();
    }
    std::size_t unanswered() const { return unanswered_.size(); }

    // Every call, in order.
    std::vector<Call> calls;

    // What the system's settings say now. A test sets it as another program would.
    int currentStatus = kNotRegistered;
    // With an error nothing changes.
    ScriptedAnswer<std::optional<std::string>> registerError{std::nullopt};
    ScriptedAnswer<std::optional<std::string>> unregisterError{std::nullopt};
    // From a call, or from `letGo`, to the answer.
    std::chrono::nanoseconds delay{0};

 private:
    void ask(Call call, std::function<void()> answer) {
        calls.push_back(call);
        unanswered_.push_back(std::move(answer));
        if (!isHeld_) sendAnswers();
    }

    // Each arrival answers the call that has waited longest, so that none overtakes another.
    void sendAnswers() {
        for (; underWay_ < unanswered_.size(); ++underWay_) {
            const std::uint64_t number = arrivalCount_++;
            arrivals_.emplace(number, mainQueue_.after(delay, [this, number] { answerNext(number); }));
        }
    }
    void answerNext(std::uint64_t arrival) {
        const auto ended = arrivals_.extract(arrival);
        const auto answer = std::move(unanswered_.front());
        unanswered_.pop_front();
        --underWay_;
        answer();
    }

    std::optional<std::string> change(std::optional<std::string> error, int status) {
        if (!error) currentStatus = status;
        return error;
    }

    MainQueue& mainQueue_;
    bool isHeld_ = false;
    std::deque<std::function<void()>> unanswered_;
    std::size_t underWay_ = 0;
    std::map<std::uint64_t, Cancellation> arrivals_;
    std::uint64_t arrivalCount_ = 0;
};

}  // namespace norvane
