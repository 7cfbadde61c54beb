#include "platform/linux/LinuxWorkspace.h"

#include <sys/stat.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "BusTest.h"
#include "linux/HeldQueue.h"
#include "linux/TemporaryFolder.h"
#include "platform/linux/LinuxApplication.h"
#include "platform/linux/LinuxBackgroundQueue.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

constexpr const char* kFolderVariable = "NORVANE_TEST_FOLDER";

using WorkspaceTest = BusTest;

TEST_F(WorkspaceTest, GivesLinksToThePortalAndWhatItDoesNotTakeToAProgram) {
    BusConnection connection(queue, bus.address(), kAtOnce);
    HeldQueue programs;
    LinuxWorkspace workspace(connection, connection, queue, programs, RootFolder(""), 300ms);
    const auto looksForAProgram = [&] {
        workspace.openURL("https://example.org");
        return runUntil([&, before = programs.tasks.size()] { return programs.tasks.size() == before + 1; });
    };
    EXPECT_TRUE(looksForAProgram()) << "there is no portal";
    {
        PlayedService::Answer answer{"(objectpath '/request',)"};
        const PlayedService portal(bus, kPortalName, [&](const PlayedService::Call& call) {
            EXPECT_EQ(call.path + ' ' + call.interface,
                      "/org/freedesktop/portal/desktop org.freedesktop.portal.OpenURI");
            return answer;
        });
        for (const char* const url :
             {"file:///etc/passwd", "javascript:1", "", "https", "https:", "httpsx://a", "-https://a",
              " https://a", "https://a\nb", "mailto:\xFF"})
            workspace.openURL(url);
        workspace.openURL("https://" + std::string(100'000, 'a'));
        for (const char* const url : {"https://a/b?c=%20&d#e", "HTTP://b", "mailto:c@b"})
            workspace.openURL(url);
        EXPECT_TRUE(runUntil([&] { return portal.calls().size() >= 3; }));
        EXPECT_EQ(portal.argumentsOf("OpenURI"), (Texts{"('', 'https://a/b?c=%20&d#e', {})",
                                                        "('', 'HTTP://b', {})", "('', 'mailto:c@b', {})"}));
        EXPECT_EQ(programs.tasks.size(), 1u);
        answer = {.error = "org.freedesktop.DBus.Error.UnknownMethod"};
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
    if (!runUntil([&] { return std::filesystem::exists(folder + "/told"); })) return;
    // The process in between may end after what it has started; whoever waits for it is not robbed of it.
    siginfo_t child{};
    const auto hasNone = [&] { return waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) != 0; };
    if (runUntil(hasNone) && errno == ECHILD) std::filesystem::create_directory(folder + "/good");
}

// The links are opened by this test in a second process, since GLib asks once for the folders of the user.
TEST(HandlerProgram, IsStartedWithTheLinkAndFreeSignalsAndLeavesNoChild) {
    if (const char* const told = std::getenv(kFolderVariable)) return openLinksAndTell(told);
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
    const ChildProcess other({self, "--gtest_filter=HandlerProgram.*", "--gtest_output=", "--gtest_brief=1"},
                             {{kFolderVariable, path},
                              {"XDG_DATA_HOME", path + "/data"},
                              {"XDG_CONFIG_HOME", path + "/config"},
                              {"XDG_DATA_DIRS", path + "/none"},
                              {"XDG_CONFIG_DIRS", path + "/none"},
                              {"XDG_CURRENT_DESKTOP", ""}});
    EXPECT_TRUE(runUntil([&] { return std::filesystem::exists(path + "/good"); })) << "no link, or a child";
    EXPECT_EQ(folder.text("/told"),
              "2\nfirst\nhttps://example.org/$(id) 'b'\n"
              "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
}

}  // namespace
}  // namespace norvane
