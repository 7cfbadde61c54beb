#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <regex>
#include <sstream>
#include <string>

#include "bus/ChildProcess.h"
#include "bus/PrivateBus.h"
#include "gallery/ShownMachines.h"
#include "linux/RunLoop.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/PangoTextRuler.h"
#include "platform/linux/X11WindowServer.h"
#include "platform/scripted/ScriptedMachine.h"
#include "shell/NorvaneApp.h"
#include "windows/Xvfb.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

constexpr const char* kLauncher = "/usr/libexec/at-spi-bus-launcher";

std::string contentOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

// The same words, with 0 for every number: the machine's figures depend on when they are read.
std::string withoutNumbers(std::string text) {
    static const std::regex number("[0-9]+([.][0-9]+)?");
    return std::regex_replace(text, number, "0");
}

// The whole application with real windows, on a laptop that does what the test says and keeps the time of the
// main loop; its user has a screen reader.
class ScreenReaderTest : public testing::Test {
 protected:
    void SetUp() override {
        ASSERT_TRUE(xvfb.isRunning()) << "Xvfb does not start";
        connection = X11Connection::open(xvfb.display().c_str());
        ASSERT_NE(connection, nullptr);
        environment = {{"DISPLAY", xvfb.display()},
                       {"DBUS_SESSION_BUS_ADDRESS", bus.address()},
                       {"XDG_RUNTIME_DIR", bus.folder()},
                       {"HOME", bus.folder()},
                       {"GSETTINGS_BACKEND", "memory"}};
        launcher = std::make_unique<ChildProcess>(std::vector<std::string>{kLauncher}, environment);
        windowServer =
            std::make_unique<X11WindowServer>(*connection, sessionBus, systemBus, layouts, machine.appearance,
                                              machine.time.monotonicClock(), queue);
        gallery::makeLaptopWithSticks(machine);
        for (std::size_t core = 0; core < 8; ++core)
            machine.hostPort.processors.setLoad(core, 5);
        machine.appearance.setReducesMotion(true);
        machine.userDefaults.setObject("hasSeenWelcome", true);
        machine.userDefaults.setObject("isSmartAutoExpandEnabled", false);
        Platform platform = machine.platform(ruler);
        app.emplace(Platform{.wallClock = platform.wallClock,
                             .monotonicClock = platform.monotonicClock,
                             .dispatch = platform.dispatch,
                             .hostPort = platform.hostPort,
                             .sysctl = platform.sysctl,
                             .processInfo = platform.processInfo,
                             .registry = platform.registry,
                             .powerSources = platform.powerSources,
                             .fileManager = platform.fileManager,
                             .userNotificationCenter = platform.userNotificationCenter,
                             .standardOutput = platform.standardOutput,
                             .loginItem = platform.loginItem,
                             .workspace = platform.workspace,
                             .mainBundle = platform.mainBundle,
                             .userDefaults = platform.userDefaults,
                             .uuidSource = platform.uuidSource,
                             .textRuler = platform.textRuler,
                             .appearance = platform.appearance,
                             .windowServer = *windowServer,
                             .application = platform.application});
        app->launch();
        timer = g_timeout_add(
            10,
            [](gpointer self) -> gboolean {
                static_cast<ScreenReaderTest*>(self)->machine.advance(10ms);
                return G_SOURCE_CONTINUE;
            },
            this);
    }
    void TearDown() override {
        if (timer != 0) g_source_remove(timer);
        app.reset();
        launcher->terminate();  // with the bus that it has started
    }

    Xvfb xvfb;
    PrivateBus bus;
    ChildProcess::Environment environment;
    std::unique_ptr<ChildProcess> launcher;
    LinuxMainQueue queue;
    BusConnection sessionBus{queue, bus.address()};
    BusConnection systemBus{queue, ""};
    TextLayouts layouts;
    PangoTextRuler ruler{layouts};
    ScriptedMachine machine;
    std::unique_ptr<X11Connection> connection;
    std::unique_ptr<X11WindowServer> windowServer;
    std::optional<NorvaneApp> app;
    guint timer = 0;
};

// What is heard stands in docs/accessibility.md, word for word, numbers aside.
TEST_F(ScreenReaderTest, ReadsEachPanelHearsChangesAndActs) {
    const std::string transcript = std::string(NORVANE_BINARY_DIR) + "/accessibility.transcript";
    const std::string signal = bus.folder() + "/signal";
    std::filesystem::remove(transcript);
    const ChildProcess reader(
        {"/usr/bin/python3", std::string(NORVANE_SOURCE_DIR) + "/tests/desktop/screen_reader.py", transcript,
         signal},
        environment);
    bool isSignalled = false;
    const bool hasEnded = runUntil(
        [&] {
            if (!isSignalled && std::filesystem::exists(signal)) {
                isSignalled = true;
                constexpr int kCritical = 4;
                machine.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).always(kCritical);
            }
            const std::string text = contentOf(transcript);
            return text.ends_with("The end.\n") || text.find("did not happen") != std::string::npos;
        },
        180s);
    const std::string text = contentOf(transcript);
    ASSERT_TRUE(hasEnded) << text;
    EXPECT_EQ(machine.workspace.ejected, std::vector<std::string>{"/media/ada/BACKUP"});

    const std::string page = contentOf(std::string(NORVANE_SOURCE_DIR) + "/docs/accessibility.md");
    EXPECT_NE(withoutNumbers(page).find(withoutNumbers("```text" + text + "```")), std::string::npos)
        << "the page does not say what is heard; that is in " << transcript;
}

}  // namespace
}  // namespace norvane
