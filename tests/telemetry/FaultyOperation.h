#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "telemetry/Outcome.h"

namespace norvane {

// One way in which an operation of the platform goes wrong, and what is seen of it.
template <typename Answer>
struct Fault {
    std::string name;
    // What it answers where a healthy one would answer this.
    std::function<Answer(const Answer& healthy)> answer;
    // Makes what is seen of a healthy machine into what is seen of this one. Without it: nothing.
    std::function<void(Outcome&)> effect;
    // What is seen of it outlives it.
    bool leavesTraces = false;
};

// The faults of an operation, where it takes a name those under this name:
//   kName     for messages,
//   faults()  a list of `Fault`,
// or, where no tick asks it,
//   kName, kWhyNotAsked.
// Defined for no operation but those that have one of the two: a port with another one does not build here.
template <auto Operation, auto... Key>
struct FaultsOf;

// An operation as a run of the machine sees it, whatever it answers.
class AnyOperation {
 public:
    virtual ~AnyOperation() = default;

    virtual std::string name() const = 0;
    // Empty for one that a tick asks.
    virtual std::string whyNotAsked() const { return {}; }
    virtual std::vector<std::string> faultNames() const { return {}; }

    virtual void fail(std::size_t) {}
    virtual void recover() {}
    // Of the fault that it has.
    virtual void applyEffect(Outcome&) const {}
    virtual bool leavesTraces() const { return false; }

    std::uint64_t asked() const { return asked_; }
    void forgetAsked() { asked_ = 0; }

 protected:
    void noteAsked() { ++asked_; }

 private:
    std::uint64_t asked_ = 0;
};

// Stands in a port for an operation that a tick asks, and announces itself in the list of all operations.
template <auto Operation, auto... Key>
class FaultyOperation final : public AnyOperation {
    using Faults = FaultsOf<Operation, Key...>;
    using List = decltype(Faults::faults());

 public:
    explicit FaultyOperation(std::vector<AnyOperation*>& all) { all.push_back(this); }

    template <typename Answer>
    Answer operator()(Answer healthy) {
        noteAsked();
        return fault_ ? fault_->answer(healthy) : healthy;
    }

    std::string name() const override { return Faults::kName; }
    std::vector<std::string> faultNames() const override {
        std::vector<std::string> names;
        for (const auto& fault : Faults::faults())
            names.push_back(fault.name);
        return names;
    }
    void fail(std::size_t index) override { fault_ = Faults::faults().at(index); }
    void recover() override { fault_.reset(); }
    void applyEffect(Outcome& outcome) const override {
        if (fault_ && fault_->effect) fault_->effect(outcome);
    }
    bool leavesTraces() const override { return fault_ && fault_->leavesTraces; }

 private:
    std::optional<typename List::value_type> fault_;
};

// The same for one that no tick asks.
template <auto Operation, auto... Key>
class UnaskedOperation final : public AnyOperation {
    using Faults = FaultsOf<Operation, Key...>;

 public:
    explicit UnaskedOperation(std::vector<AnyOperation*>& all) { all.push_back(this); }

    void operator()() { noteAsked(); }

    std::string name() const override { return Faults::kName; }
    std::string whyNotAsked() const override { return Faults::kWhyNotAsked; }
};

}  // namespace norvane
