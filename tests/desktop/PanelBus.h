#pragma once

#include <fstream>
#include <string>

#include "bus/PrivateBus.h"

namespace norvane {

// A bus on which xfce4-panel finds the service that keeps its settings, with a home in the bus' folder.
class PanelBus : public PrivateBus {
 public:
    PanelBus() {
        std::ifstream file("/usr/share/dbus-1/services/org.xfce.Xfconf.service");
        std::string line;
        while (std::getline(file, line)) {
            if (!line.starts_with("Exec=")) continue;
            makeActivatable("org.xfce.Xfconf", "/usr/bin/env HOME=" + folder() +
                                                   " XDG_CONFIG_HOME=" + folder() + ' ' + line.substr(5));
            return;
        }
    }
};

}  // namespace norvane
