#include "PrivateBus.h"

#include <gtest/gtest.h>

namespace norvane {

PrivateBus::PrivateBus() : address_("unix:path=" + folder_.path() + "/socket") {
    folder_.makeFolder("/services");
    folder_.write(
        "/configuration", R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>)" + address_ + R"(</listen>
  <servicedir>)" + folder_.path() +
                              R"(/services</servicedir>
  <policy context="default">
    <allow user="*"/>
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)");
    start();
}

void PrivateBus::kill() {
    daemon_.reset();
    folder_.remove("/socket");
}

void PrivateBus::start() {
    kill();
    daemon_ = std::make_unique<ChildProcess>(std::vector<std::string>{
        "dbus-daemon", "--config-file=" + folder_.path() + "/configuration", "--nofork", "--print-address"});
    EXPECT_TRUE(daemon_->firstLine()) << "dbus-daemon does not start";
}

void PrivateBus::makeActivatable(const std::string& name, const std::string& command) {
    folder_.write("/services/" + name + ".service",
                  "[D-BUS Service]\nName=" + name + "\nExec=" + command + '\n');
    start();
}

}  // namespace norvane
