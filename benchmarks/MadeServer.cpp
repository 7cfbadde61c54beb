#include "MadeServer.h"

#include <cstdlib>
#include <stdexcept>

namespace norvane {

MadeServer::MadeServer(int processors, int disks, int mounts) {
    std::string command = NORVANE_SOURCE_DIR "/tools/make-server-fixture " + path();
    for (const int number : {processors, disks, mounts})
        command += " " + std::to_string(number);
    if (path().empty() || std::system(command.c_str()) != 0) throw std::runtime_error("no server was made");
}

}  // namespace norvane
