#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace norvane {

// An operation of the platform as a run of the machine sees it, whatever it answers.
class AnyOperation {
 public:
    explicit AnyOperation(std::string_view name) : name_(name) {}
    virtual ~AnyOperation() = default;

    const std::string& name() const { return name_; }
    // For messages: its numbers.
    virtual std::vector<std::string> faultNames() const = 0;
    virtual void fail(std::size_t fault) = 0;
    virtual void recover() = 0;

 private:
    const std::string name_;
};

using Operations = std::vector<AnyOperation*>;

// Stands in a port for an operation that a tick asks, and announces itself in the list of all operations. Its
// faults are the answers that it can be made to give instead of the healthy one.
template <typename Answer>
class FaultyOperation final : public AnyOperation {
 public:
    FaultyOperation(Operations& all, std::string_view name, std::vector<Answer> faults)
        : AnyOperation(name), faults_(std::move(faults)) {
        all.push_back(this);
    }

    Answer operator()(Answer healthy) const { return fault_ == nullptr ? healthy : *fault_; }

    std::vector<std::string> faultNames() const override {
        std::vector<std::string> names;
        for (std::size_t i = 0; i < faults_.size(); ++i)
            names.push_back(std::to_string(i));
        return names;
    }
    void fail(std::size_t fault) override { fault_ = &faults_.at(fault); }
    void recover() override { fault_ = nullptr; }

 private:
    const std::vector<Answer> faults_;
    const Answer* fault_ = nullptr;
};

}  // namespace norvane
