#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace norvane {

// One combination out of a cross product. Its number, counted up from 0, is taken apart into one choice after
// the other, each named by a letter; the letters so far are its state.
class Combination {
 public:
    explicit Combination(unsigned number) : rest_(number) {}

    char letter(std::string_view letters) {
        const auto count = static_cast<unsigned>(letters.size());
        state_ += letters[rest_ % count];
        rest_ /= count;
        return state_.back();
    }
    bool flag() { return letter("01") == '1'; }
    // The value that stands where the letter does.
    template <typename Value>
    Value of(std::string_view letters, std::initializer_list<Value> values) {
        return values.begin()[letters.find(letter(letters))];
    }

    const std::string& state() const { return state_; }
    // Once all is chosen: whether the number was beyond the last combination.
    bool isBeyondLast() const { return rest_ != 0; }

 private:
    unsigned rest_;
    std::string state_;
};

}  // namespace norvane
