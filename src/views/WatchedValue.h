#pragma once

#include <typeinfo>
#include <utility>

namespace norvane {

// A value of any type that can be compared with one of the evaluation before.
class WatchedValue {
 public:
    virtual ~WatchedValue() = default;

    virtual bool isSameAs(const WatchedValue& other) const = 0;
};

template <typename Value>
class WatchedValueOf final : public WatchedValue {
 public:
    explicit WatchedValueOf(Value value) : value_(std::move(value)) {}

    bool isSameAs(const WatchedValue& other) const override {
        const auto* its = dynamic_cast<const WatchedValueOf*>(&other);
        return its != nullptr && (its->value_ == value_ || (isNoValue(its->value_) && isNoValue(value_)));
    }

 private:
    // What is no number differs from itself. It has not changed as long as it stays so.
    static bool isNoValue(const Value& value) { return !(value == value); }

    Value value_;
};

}  // namespace norvane
