#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace norvane {

// An operation of the platform that can be made to fail, whatever it answers.
class AnyOperation {
 public:
    AnyOperation(std::string_view name, std::size_t faults) : name_(name), faults_(faults) {}

    const std::string& name() const { return name_; }
    // For messages: their numbers.
    std::vector<std::string> faultNames() const {
        std::vector<std::string> names;
        for (std::size_t i = 0; i < faults_; ++i)
            names.push_back(std::to_string(i));
        return names;
    }
    void fail(std::size_t fault) { fault_ = fault; }
    void recover() { fault_.reset(); }

 protected:
    std::optional<std::size_t> fault_;

 private:
    const std::string name_;
    const std::size_t faults_;
};

using Operations = std::vector<AnyOperation*>;

// Stands in a port for an operation that a tick asks, and announces itself in the list of all operations. Its
// faults are the answers that it can be made to give instead of the healthy one.
template <typename Answer>
class FaultyOperation final : public AnyOperation {
 public:
    FaultyOperation(Operations& all, std::string_view name, std::vector<Answer> faults)
        : AnyOperation(name, faults.size()), faults_(std::move(faults)) {
        all.push_back(this);
    }

    Answer operator()(Answer healthy) const { return fault_ ? faults_.at(*fault_) : healthy; }

 private:
    const std::vector<Answer> faults_;
};

}  // namespace norvane
