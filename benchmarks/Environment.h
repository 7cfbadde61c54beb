#pragma once

#include <map>
#include <string>
#include <vector>

namespace norvane {

// The environment that a child process is given.
class Environment {
 public:
    // This process's own.
    static Environment inherited();

    Environment with(const std::string& name, const std::string& value) const;
    Environment without(const std::string& name) const;

    // "NAME=value", for execve(2).
    std::vector<std::string> entries() const;

 private:
    std::map<std::string, std::string> values_;
};

}  // namespace norvane
