#pragma once

#include <string>

namespace norvane {

// Where made-up trees and made-up events take their decisions from: chance, or the bytes of an input.
class Choices {
 public:
    virtual ~Choices() = default;

    // One of 0 to `end` - 1; 0 where there is nothing left to decide by.
    virtual unsigned below(unsigned end) = 0;
    // Usually 0 to 1.
    virtual double fraction() = 0;
    virtual std::string words() = 0;
    virtual bool isOver() const = 0;

    bool isSo() { return below(2) == 1; }
};

}  // namespace norvane
