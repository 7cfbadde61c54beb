#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace norvane {

// What the compiler did not understand in a drawing, and where.
class Complaint : public std::runtime_error {
 public:
    Complaint(std::size_t line, const std::string& what) : std::runtime_error(what), line_(line) {}

    std::size_t line() const { return line_; }  // the first one is 1

 private:
    std::size_t line_;
};

}  // namespace norvane
