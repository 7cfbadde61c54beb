#pragma once

#include <string>
#include <vector>

#include "platform/linux/FileObserver.h"

namespace norvane {

// Writes down what is opened and read. For one thread.
class CountingFileObserver final : public FileObserver {
 public:
    std::vector<std::string> opened;
    std::vector<std::string> read;

    void willOpen(std::string_view path) override { opened.emplace_back(path); }
    void willRead(std::string_view path) override { read.emplace_back(path); }
    void forget() {
        opened.clear();
        read.clear();
    }
};

}  // namespace norvane
