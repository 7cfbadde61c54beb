#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <sstream>

#include "gallery/ShownMachines.h"
#include "platform/linux/LinuxMainQueue.h"
#include "platform/linux/PangoTextRuler.h"
#include "platform/linux/X11WindowServer.h"
#include "platform/scripted/ScriptedMachine.h"
#include "RealDesktop.h"
#include "shell/NorvaneApp.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;

std::string contentOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

// The same words, with 0 for every number: the machine's figures depend on when they are read.
std::string withoutNumbers(const std::string& text) {
    return std::regex_replace(text, std::regex("[0-9]+([.][0-9]+)?"), "0");
}

// The whole application with real windows, on a laptop that does what the test says and keeps the time of the
// main loop; its user has a screen reader.
class ScreenReaderTest : public RealDesktop {
 protected:
    void SetUp() override {
        RealDesktop::SetUp();
        connection_ = X11Connection::open(xvfb_.display().c_str());
        ASSERT_NE(connection_, nullptr);
        launcher_ = start({"/usr/libexec/at-spi-bus-launcher"});
        windowServer_.emplace(*connection_, sessionBus_, systemBus_, layouts_, machine_.appearance,
                              machine_.time.monotonicClock(), queue_);
        gallery::makeLaptopWithSticks(machine_);
        for (std::size_t core = 0; core < 8; ++core)
            machine_.hostPort.processors.setLoad(core, 5);
        machine_.appearance.setReducesMotion(true);
        machine_.userDefaults.setObject("hasSeenWelcome", true);
        machine_.userDefaults.setObject("isSmartAutoExpandEnabled", false);
        const Platform p = machine_.platform(ruler_);
        // All of it but the window server.
        app_.emplace(Platform{
            p.wallClock,      p.monotonicClock, p.dispatch,     p.hostPort,     p.sysctl,
            p.processInfo,    p.registry,       p.powerSources, p.fileManager,  p.userNotificationCenter,
            p.standardOutput, p.loginItem,      p.workspace,    p.mainBundle,   p.userDefaults,
            p.uuidSource,     p.textRuler,      p.appearance,   *windowServer_, p.application});
        app_->launch();
        const auto tick = [](gpointer machine) -> gboolean {
            static_cast<ScriptedMachine*>(machine)->advance(10ms);
            return G_SOURCE_CONTINUE;
        };
        timer_ = g_timeout_add(10, tick, &machine_);
    }
    void TearDown() override {
        if (timer_ != 0) g_source_remove(timer_);
        app_.reset();
        launcher_->terminate();  // with the bus that it has started
    }

    std::unique_ptr<ChildProcess> launcher_;
    LinuxMainQueue queue_;
    BusConnection sessionBus_{queue_, bus_.address()};
    BusConnection systemBus_{queue_, ""};
    TextLayouts layouts_;
    PangoTextRuler ruler_{layouts_};
    ScriptedMachine machine_;
    std::unique_ptr<X11Connection> connection_;
    std::optional<X11WindowServer> windowServer_;
    std::optional<NorvaneApp> app_;
    guint timer_ = 0;
};

// What is heard stands in docs/accessibility.md, word for word, numbers aside.
TEST_F(ScreenReaderTest, ReadsEachPanelHearsChangesAndActs) {
    const std::string transcript = NORVANE_BINARY_DIR "/accessibility.transcript";
    const std::string signal = bus_.folder() + "/signal";
    std::filesystem::remove(transcript);
    const auto reader =
        start({"/usr/bin/python3", NORVANE_SOURCE_DIR "/tests/desktop/screen_reader.py", transcript, signal});
    const auto gotTo = [](const std::function<bool()>& holds) { return runUntil(holds, 180s); };
    const auto hasEnded = [&] {
        const std::string text = contentOf(transcript);
        return text.ends_with("The end.\n") || text.find("did not happen") != std::string::npos;
    };
    EXPECT_TRUE(gotTo([&] { return std::filesystem::exists(signal) || hasEnded(); }));
    constexpr int kCritical = 4;
    machine_.sysctl.number(SysctlNumber::kern_memorystatus_vm_pressure_level).always(kCritical);
    EXPECT_TRUE(gotTo(hasEnded));
    EXPECT_EQ(machine_.workspace.ejected, std::vector<std::string>{"/media/ada/BACKUP"});

    const std::string text = contentOf(transcript);
    const std::string page = contentOf(NORVANE_SOURCE_DIR "/docs/accessibility.md");
    EXPECT_NE(withoutNumbers(page).find(withoutNumbers("```text" + text + "```")), std::string::npos)
        << "the page does not say what is heard; that is in " << transcript << ":\n"
        << text;
}

}  // namespace
}  // namespace norvane
