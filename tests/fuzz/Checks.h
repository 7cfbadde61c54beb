#pragma once

#include <map>
#include <string_view>

namespace norvane {

// By the target's name what is done with its input: it goes to a parser, and what must hold for any bytes at
// all is checked. Crashes, overruns and leaks are found by the sanitizers.
using Checks = std::map<std::string_view, void (*)(std::string_view text)>;

Checks parserChecks();
Checks textChecks();
Checks fileChecks();
Checks machineChecks();
Checks viewTreeChecks();

}  // namespace norvane
