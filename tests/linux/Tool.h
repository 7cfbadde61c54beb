#pragma once

#include <string>
#include <vector>

namespace norvane {

// Runs one of the project's tools until it ends. Gives its exit status; -1 if it was ended by a signal or
// could not be started.
int runTool(const std::string& name, const std::vector<std::string>& arguments);

}  // namespace norvane
