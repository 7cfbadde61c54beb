#pragma once

#include <gtest/gtest.h>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "bus/BusPeer.h"
#include "bus/ChildProcess.h"
#include "bus/PrivateBus.h"
#include "linux/RunLoop.h"
#include "windows/Bystander.h"
#include "windows/Xvfb.h"

namespace norvane {

// A bus on which xfce4-panel finds the service that keeps its settings, with a home in the bus' folder.
class PanelBus : public PrivateBus {
 public:
    PanelBus() {
        std::ifstream file("/usr/share/dbus-1/services/org.xfce.Xfconf.service");
        const std::string homes = "HOME=" + folder() + " XDG_CONFIG_HOME=" + folder() + ' ';
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with("Exec="))
                makeActivatable("org.xfce.Xfconf", "/usr/bin/env " + homes + line.substr(5));
        }
    }
};

// A screen and a bus of a test's own, and real programs on them, with the settings that they come with.
class RealDesktop : public testing::Test {
 protected:
    void SetUp() override { ASSERT_TRUE(xvfb_.isRunning()) << "Xvfb does not start"; }
    std::unique_ptr<ChildProcess> start(const std::vector<std::string>& command) const {
        const std::string& home = bus_.folder();
        const ChildProcess::Environment environment{{"DISPLAY", xvfb_.display()},
                                                    {"DBUS_SESSION_BUS_ADDRESS", bus_.address()},
                                                    {"HOME", home},
                                                    {"XDG_CONFIG_HOME", home},
                                                    {"XDG_CACHE_HOME", home},
                                                    {"XDG_RUNTIME_DIR", home},
                                                    {"GSETTINGS_BACKEND", "memory"},
                                                    {"GDK_BACKEND", "x11"},
                                                    {"NO_AT_BRIDGE", "1"},
                                                    {"GTK_A11Y", "none"}};
        return std::make_unique<ChildProcess>(command, environment);
    }
    int run(const std::string& command) const { return runOn(xvfb_.display(), command); }

    Xvfb xvfb_;
    PanelBus bus_;
    BusPeer peer_{bus_.address()};
    Bystander bystander_{xvfb_.display()};
};

}  // namespace norvane
