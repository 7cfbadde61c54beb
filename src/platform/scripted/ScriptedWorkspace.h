#pragma once

#include <string>
#include <vector>

#include "platform/Workspace.h"

namespace norvane {

// Opens nothing, and remembers what it was to open.
class ScriptedWorkspace final : public Workspace {
 public:
    void openURL(const std::string& url) override { opened.push_back(url); }

    std::vector<std::string> opened;
};

}  // namespace norvane
