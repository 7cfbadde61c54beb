#pragma once

#include <cstdint>
#include <functional>
#include <utility>

namespace norvane {

// What a scripted port says to one question, and how often it was asked.
template <typename Answer>
class ScriptedAnswer {
 public:
    explicit ScriptedAnswer(Answer answer) { always(std::move(answer)); }

    // From now on, the same answer to every question.
    void always(Answer answer) {
        answer_ = [answer = std::move(answer)] { return answer; };
    }
    // From now on, an answer worked out for each question.
    void from(std::function<Answer()> answer) { answer_ = std::move(answer); }

    Answer ask() {
        ++asked_;
        return answer_();
    }
    std::uint64_t asked() const { return asked_; }

 private:
    std::function<Answer()> answer_;
    std::uint64_t asked_ = 0;
};

}  // namespace norvane
