#include "platform/linux/LinuxWorkspace.h"

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "BusTest.h"
#include "linux/TemporaryFolder.h"
#include "platform/linux/LinuxApplication.h"
#include "platform/linux/LinuxBackgroundQueue.h"
#include "PlayedService.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

constexpr const char* kPortal = "org.freedesktop.portal.Desktop";
constexpr const char* kFolderVariable = "NORVANE_TEST_FOLDER";

std::string contentsOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

// The queue that a link goes to once the portal has not taken it; it starts nothing.
class CountingQueue final : public BackgroundQueue {
 public:
    void async(Task) override { ++count; }
    void asyncAfter(std::chrono::nanoseconds, Task) override { ++count; }

    int count = 0;
};

class WorkspaceTest : public BusTest {
 protected:
    // Whether nobody but a program is left to open a link.
    bool looksForAProgram() {
        workspace.openURL("https://example.org");
        const int before = others.count;
        return runUntil([&] { return others.count == before + 1; });
    }

    BusConnection connection{queue, bus.address(), kAtOnce};
    CountingQueue others;
    LinuxWorkspace workspace{connection, connection, queue, others, RootFolder(""), 300ms};
};

TEST_F(WorkspaceTest, GivesLinksToThePortalAndNothingElse) {
    const PlayedService portal(bus, kPortal, [](const auto& call) -> PlayedService::Answer {
        EXPECT_EQ(call.path + ' ' + call.interface + ' ' + call.method,
                  "/org/freedesktop/portal/desktop org.freedesktop.portal.OpenURI OpenURI");
        return {"(objectpath '/request',)"};
    });
    for (const char* const url : {"file:///etc/passwd", "javascript:1", "", "https", "https:", "httpsx://a",
                                  "-https://a", " https://a", "https://a\nb", "mailto:\xFF"})
        workspace.openURL(url);
    workspace.openURL("https://" + std::string(100'000, 'a'));
    for (const char* const url :
         {"https://example.org/a?b=%20&c#d", "HTTP://example.org", "mailto:somebody@example.org"})
        workspace.openURL(url);
    EXPECT_TRUE(runUntil([&] { return portal.calls().size() >= 3; }));
    EXPECT_EQ(portal.argumentsOf("OpenURI"),
              (Texts{"('', 'https://example.org/a?b=%20&c#d', {})", "('', 'HTTP://example.org', {})",
                     "('', 'mailto:somebody@example.org', {})"}));
    EXPECT_EQ(others.count, 0);
}

TEST_F(WorkspaceTest, LooksForAProgramWhereThePortalDoesNotTakeTheLink) {
    EXPECT_TRUE(looksForAProgram()) << "there is none";
    PlayedService::Answer answer{.error = "org.freedesktop.DBus.Error.UnknownMethod"};
    {
        const PlayedService portal(bus, kPortal, [&](const auto&) { return answer; });
        EXPECT_TRUE(looksForAProgram()) << "it opens no links";
        answer = {.isLater = true};
        EXPECT_TRUE(looksForAProgram()) << "it hangs";
    }
    bus.kill();
    EXPECT_TRUE(looksForAProgram()) << "there is no bus";
}

TEST(HandlerCommand, HasTheLinkWhereTheProgramWantsIt) {
    const struct {
        const char* exec;
        Texts command;
    } cases[] = {
        {"browser %u", {"browser", "L"}},
        {"browser %U --new", {"browser", "L", "--new"}},
        {"browser %F", {"browser", "L"}},
        {"browser --url=%u", {"browser", "--url=L"}},
        {"browser", {"browser", "L"}},
        {"\"/opt/my browser\" \"\" 100%% %i %c %u", {"/opt/my browser", "", "100%", "L"}},
        {"browser $(reboot) `reboot`; %u", {"browser", "$(reboot)", "`reboot`;", "L"}},
        {"browser %", {"browser", "%", "L"}},
        {"browser \"%u", {}},
        {"%i", {}},
        {"\"\" %u", {}},
        {"", {}},
        {nullptr, {}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(LinuxWorkspace::commandFor(each.exec, "L"), each.command) << (each.exec ? each.exec : "");
}

// What the other process of the test below does. Like the program it has signals that are blocked and one
// that is ignored.
void openLinksAndTell(const std::string& folder) {
    LinuxMainQueue queue;
    const LinuxApplication application(queue);
    LinuxBackgroundQueue background;
    BusConnection noBus(queue, "");
    LinuxWorkspace workspace(noBus, noBus, queue, background, RootFolder(""));
    workspace.openURL("Mailto:x");  // nobody takes it
    workspace.openURL("https://example.org/$(id) 'b'");
    const bool isStarted = runUntil([&] { return std::filesystem::exists(folder + "/told"); });
    // The process in between may end after what it has started; whoever waits for it is not robbed of it.
    const bool hasNoChild = runUntil([] {
        siginfo_t child{};
        return waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) != 0 && errno == ECHILD;
    });
    std::ofstream(folder + "/verdict")
        << (isStarted ? "started" : "not started") << (hasNoChild ? "" : ", left behind");
}

// The links are opened by this test in a second process, since GLib asks once for the folders of the user.
TEST(HandlerProgram, IsStartedWithTheLinkAndFreeSignalsAndLeavesNoChild) {
    if (const char* const told = std::getenv(kFolderVariable)) {
        openLinksAndTell(told);
        return;
    }
    const TemporaryFolder folder;
    const std::string& path = folder.path();
    // Not a shell, which would set its signals free by itself.
    folder.write("/handler", "#!/usr/bin/awk -f\nBEGIN {\n  part = \"" + path + R"(/part"
  print ARGC - 1 > part
  for (k = 1; k < ARGC; ++k) print ARGV[k] > part
  while ((getline line < "/proc/self/status") > 0) if (line ~ /^Sig(Blk|Ign)/) print line > part
  close(part)
  system("mv " part " )" + path + "/told\")\n}\n");
    ASSERT_EQ(chmod((path + "/handler").c_str(), 0700), 0);
    folder.write("/data/applications/handler.desktop",
                 "[Desktop Entry]\nType=Application\nName=Handler\nExec=" + path + "/handler first %u\n");
    folder.write("/config/mimeapps.list", "[Default Applications]\nx-scheme-handler/https=handler.desktop\n");
    const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
    ChildProcess other({self, "--gtest_filter=HandlerProgram.*", "--gtest_output=", "--gtest_brief=1"},
                       {{kFolderVariable, path},
                        {"XDG_DATA_HOME", path + "/data"},
                        {"XDG_CONFIG_HOME", path + "/config"},
                        {"XDG_DATA_DIRS", path + "/none"},
                        {"XDG_CONFIG_DIRS", path + "/none"},
                        {"XDG_CURRENT_DESKTOP", ""}});
    ASSERT_TRUE(runUntil([&] { return std::filesystem::exists(path + "/verdict"); }));
    ASSERT_TRUE(runUntil([&] { return !contentsOf(path + "/verdict").empty(); }));
    EXPECT_EQ(contentsOf(path + "/verdict"), "started");
    EXPECT_EQ(contentsOf(path + "/told"),
              "2\nfirst\nhttps://example.org/$(id) 'b'\n"
              "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
}

}  // namespace
}  // namespace norvane
