#include <gtest/gtest.h>

#include <unistd.h>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>

#include "bus/ChildProcess.h"
#include "bus/PrivateBus.h"
#include "linux/TemporaryFolder.h"
#include "SystemCallTrace.h"
#include "windows/DesktopTest.h"

namespace norvane {
namespace {

using Call = SystemCallTrace::Call;

// Whatever reaches other files, processes, users or machines. Reading and writing need no look: where to is
// told by the call that opened it. A name that this kind of processor lacks is passed over.
constexpr const char* kTraced =
    "trace=%file,%process,%network,%creds,%ipc,prctl,ptrace,process_vm_readv,process_vm_writev,fchmod,fchown,"
    "fsetxattr,fremovexattr,unshare,setns,bpf,perf_event_open,keyctl,add_key,request_key,mq_open,"
    "?io_uring_setup,?pidfd_getfd";

std::string textOf(const std::string& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool isBelow(const std::string& path, const std::string& folder) {
    return path.starts_with(folder + '/') && path.find("/../") == std::string::npos && !path.ends_with("/..");
}

// Whether the path is made of these, with so many letters in place of Xs.
bool isMadeOf(const std::string& path, const std::string& before, std::string_view after) {
    constexpr std::size_t kAny = 6;
    return path.size() == before.size() + kAny + after.size() && path.starts_with(before) &&
           path.ends_with(after) && path.find('/', before.size()) == std::string::npos;
}

// What the program may do, and to what. All that is not said here it may not even try.
class Leave {
 public:
    Leave(const std::string& home, std::set<std::string> sockets)
        : defaults_(home + "/.config/norvane/"),
          autostart_(home + "/.config/autostart/"),
          userCache_(home + "/.cache"),
          // What fontconfig knows of the fonts, renewed by it where fonts have come. It takes the first that
          // it may write to.
          fontCaches_{"/var/cache/fontconfig", userCache_ + "/fontconfig", home + "/.fontconfig"},
          sockets_(std::move(sockets)) {}

    bool allows(const Call& call) const {
        const auto is = [&](std::initializer_list<const char*> names) {
            return std::find(names.begin(), names.end(), call.name) != names.end();
        };
        if (is({"access",      "faccessat",   "faccessat2", "stat",    "lstat",      "newfstatat",
                "statx",       "statfs",      "readlink",   "getcwd",  "readlinkat", "inotify_add_watch",
                "getuid",      "geteuid",     "getgid",     "getegid", "getsockopt", "setsockopt",
                "getsockname", "getpeername", "recvfrom",   "recvmsg", "recvmmsg",   "shutdown",
                "exit",        "exit_group"}))
            return true;
        if (is({"open", "openat", "openat2"})) return !wouldWrite(call) || mayWrite(call.texts());
        if (is({"socket", "socketpair"})) return !call.arguments.empty() && call.arguments[0] == "AF_UNIX";
        if (is({"connect"})) return call.arguments.size() > 1 && mayReach(call.arguments[1]);
        // Over a connection that there is, and not with an address of its own.
        if (is({"sendto", "sendmsg", "sendmmsg"})) return !call.mentions("sa_family=");
        if (is({"clone", "clone3"})) return call.mentions("CLONE_THREAD");
        if (is({"prctl"})) return !call.arguments.empty() && call.arguments[0] == "PR_SET_NAME";
        const std::vector<std::string> paths = call.texts();
        const bool hasTwo = is({"rename", "renameat", "renameat2", "link", "linkat"});
        if (paths.size() != (hasTwo ? 2 : 1)) return false;
        if (std::all_of(paths.begin(), paths.end(), [&](const auto& path) { return isOfFontCache(path); }))
            return hasTwo || is({"mkdir", "mkdirat", "chmod", "fchmodat", "unlink", "unlinkat"});
        if (is({"mkdir", "mkdirat"})) return leadsToOurs(paths[0]);
        if (is({"rename", "renameat", "renameat2"})) return mayMove(paths[0], paths[1]);
        if (is({"unlink", "unlinkat"})) return mayRemove(paths[0]);
        return false;
    }

    std::string defaults() const { return defaults_ + "defaults.ini"; }
    std::string autostart() const { return autostart_ + "norvane.desktop"; }

 private:
    static bool wouldWrite(const Call& call) {
        const auto flags = {"O_WRONLY", "O_RDWR", "O_CREAT", "O_TRUNC", "O_APPEND", "O_TMPFILE"};
        return std::any_of(flags.begin(), flags.end(), [&](const char* flag) { return call.mentions(flag); });
    }
    bool mayWrite(const std::vector<std::string>& paths) const {
        if (paths.size() != 1) return false;
        const std::string& path = paths[0];
        return path == "/dev/null" || path == "/proc/self/fd/1" || isNameOfThread(path) ||
               isNewDefaults(path) || isNewAutostart(path) || isOfFontCache(path);
    }
    // A thread has its name from another one of the program.
    static bool isNameOfThread(const std::string& path) {
        const std::string folder = "/proc/self/task/";
        const std::string file = "/comm";
        return path.starts_with(folder) && path.ends_with(file) &&
               path.size() > folder.size() + file.size() &&
               path.find_first_not_of("0123456789", folder.size()) == path.size() - file.size();
    }
    bool isNewDefaults(const std::string& path) const {
        return isMadeOf(path, defaults_ + ".defaults.ini.", ".tmp");
    }
    bool isNewAutostart(const std::string& path) const {
        return isMadeOf(path, autostart_ + ".norvane.desktop.", "");
    }
    bool isOfFontCache(const std::string& path) const {
        return path == userCache_ ||
               std::any_of(fontCaches_.begin(), fontCaches_.end(), [&](const std::string& folder) {
                   return path == folder || isBelow(path, folder);
               });
    }
    bool leadsToOurs(const std::string& folder) const {
        return folder.starts_with('/') &&
               (defaults_.starts_with(folder + '/') || autostart_.starts_with(folder + '/'));
    }
    bool mayMove(const std::string& from, const std::string& to) const {
        return (isNewDefaults(from) && to == defaults()) || (isNewAutostart(from) && to == autostart());
    }
    bool mayRemove(const std::string& path) const {
        return isNewDefaults(path) || isNewAutostart(path) || path == autostart();
    }
    // Sockets of the abstract kind, with an @ before the quotes, have the same names.
    bool mayReach(const std::string& address) const {
        return std::any_of(sockets_.begin(), sockets_.end(), [&](const std::string& socket) {
            const std::string path = '"' + socket + "\"}";
            return address == "{sa_family=AF_UNIX, sun_path=" + path ||
                   address == "{sa_family=AF_UNIX, sun_path=@" + path;
        });
    }

    std::string defaults_;
    std::string autostart_;
    std::string userCache_;
    std::vector<std::string> fontCaches_;
    std::set<std::string> sockets_;
};

// A bus that another user's programs may come to, too.
class OpenBus : public PrivateBus {
 public:
    OpenBus() {
        std::filesystem::permissions(folder(), std::filesystem::perms(0755));
        const std::string file = folder() + "/configuration";
        const std::string policy = "<policy context=\"default\">";
        std::string text = textOf(file);
        const std::size_t place = text.find(policy);
        EXPECT_NE(place, std::string::npos);
        if (place != std::string::npos) text.insert(place + policy.size(), "<allow user=\"*\"/>");
        std::ofstream(file) << text;
        start();
    }
    std::string socket() const { return folder() + "/socket"; }
};

// The real program under strace, on a display and with buses of its own, from its first start to its end. Its
// user has a new home, with a font that fontconfig does not know. Where the test is root's, the user is
// nobody: much of what an ordinary user is refused root would be granted, and the program would try other
// things.
class LeastPrivilegeTest : public DesktopTest {
 protected:
    void SetUp() override {
        DesktopTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        namespace fs = std::filesystem;
        home_.makeFolder("/.local/share/fonts");
        fs::copy_file("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                      home() + "/.local/share/fonts/DejaVuSans.ttf");
        if (isRoot_) {
            // Where it was built, nobody may be let in.
            program_ = home() + "/norvane";
            fs::copy_file(NORVANE_BINARY_DIR "/norvane", program_);
            ASSERT_EQ(runOn("", {"chown", "-R", kNobody, home()}), 0);
        }
        const std::string probe = records_.path() + "/probe";
        const int status = runOn("", traced(probe, {"test", "-x", program_, "-a", "-w", home()}));
        ASSERT_TRUE(status == 0 && !SystemCallTrace(textOf(probe)).calls().empty())
            << "Nothing can be said here: strace may not trace, or the user does not reach the program. "
               "Status "
            << status << ". " << said();
        process_ = std::make_unique<ChildProcess>(traced(trace(), {program_}));
    }
    void TearDown() override {
        process_.reset();
        DesktopTest::TearDown();
    }

    const std::string& home() const { return home_.path(); }
    std::string trace() const { return records_.path() + "/trace"; }
    // By strace and the program.
    std::string said() const { return textOf(records_.path() + "/errors"); }

    // The command under strace, with this in its environment and nothing else.
    std::vector<std::string> traced(const std::string& file, const std::vector<std::string>& command) const {
        std::vector<std::string> whole{"sh",
                                       "-c",
                                       R"(exec "$@" 2>"$0")",
                                       records_.path() + "/errors",
                                       "env",
                                       "-i",
                                       "PATH=/usr/bin:/bin",
                                       "HOME=" + home(),
                                       "DISPLAY=" + xvfb_.display(),
                                       "DBUS_SESSION_BUS_ADDRESS=" + sessionBus_.address(),
                                       "DBUS_SYSTEM_BUS_ADDRESS=" + systemBus_.address(),
                                       "strace",
                                       "-f",
                                       "-q",
                                       "--seccomp-bpf",
                                       "-e",
                                       kTraced,
                                       "-o",
                                       file};
        if (isRoot_) whole.insert(whole.end(), {"-u", kNobody});
        whole.insert(whole.end(), command.begin(), command.end());
        return whole;
    }

    // The place of a popover of that width, once it is on the screen.
    std::optional<PixelRect> popover(int width) const {
        for (const xcb_window_t window : bystander_->windows()) {
            const PixelRect frame = bystander_->frameOf(window);
            if (frame.width == width) return frame;
        }
        return std::nullopt;
    }
    bool comesUp(int width) {
        return comes([&] { return popover(width).has_value(); });
    }
    bool comesToBeKept(const std::string& line) {
        return comes([&] { return textOf(leave().defaults()).find(line + '\n') != std::string::npos; });
    }
    bool comesToStartAtLogin(bool isStarted) {
        return comes([&] { return std::filesystem::exists(leave().autostart()) == isStarted; });
    }
    Leave leave() const {
        const std::string x11 = "/tmp/.X11-unix/X" + xvfb_.display().substr(1);
        return {home(), {x11, sessionBus_.socket(), systemBus_.socket()}};
    }

    static constexpr const char* kNobody = "nobody";
    static constexpr int kWelcomeWidth = 340;
    static constexpr int kDashboardWidth = 520;
    static constexpr int kSettingsWidth = 360;

    const bool isRoot_ = geteuid() == 0;
    TemporaryFolder home_;
    TemporaryFolder records_;
    OpenBus sessionBus_;
    OpenBus systemBus_;
    std::string program_ = NORVANE_BINARY_DIR "/norvane";
    std::unique_ptr<ChildProcess> process_;
};

TEST_F(LeastPrivilegeTest, FromTheFirstStartToTheEndItKeepsToItself) {
    ASSERT_TRUE(comesUp(kWelcomeWidth)) << said();
    type("Tab");
    type("Return");
    ASSERT_TRUE(comesUp(kDashboardWidth)) << said();
    for (const auto& [x, name] :
         {std::pair{180, "memory"}, {320, "storage"}, {470, "battery"}, {50, "cpu"}}) {
        const PixelRect frame = *popover(kDashboardWidth);
        click(frame.x + x, frame.y + 105);
        ASSERT_TRUE(comesToBeKept("lastViewedPod=\"" + std::string(name) + '"')) << name;
    }

    const PixelRect dashboard = *popover(kDashboardWidth);
    click(dashboard.x + dashboard.width - 48, dashboard.y + 22);
    ASSERT_TRUE(comesUp(kSettingsWidth)) << said();
    type("Tab");
    type("space");
    ASSERT_TRUE(comesToStartAtLogin(true)) << said();
    type("space");
    ASSERT_TRUE(comesToStartAtLogin(false)) << said();
    type("Tab");
    type("space");
    ASSERT_TRUE(comesToBeKept("isSmartAutoExpandEnabled=false"));
    type("Escape");
    ASSERT_TRUE(comes([&] { return !popover(kSettingsWidth); }));

    click(Xvfb::kWidth - 27, 11);
    ASSERT_TRUE(comesUp(kDashboardWidth)) << said();
    turn(std::chrono::seconds(3));  // some ticks that read everything
    const PixelRect last = *popover(kDashboardWidth);
    click(last.x + last.width / 2, last.y + last.height - 24);
    ASSERT_TRUE(comes([&] { return SystemCallTrace(textOf(trace())).exitStatus().has_value(); })) << said();

    const SystemCallTrace trace(textOf(this->trace()));
    EXPECT_EQ(trace.exitStatus(), 0) << said();
    for (const std::string& line : trace.unreadable())
        ADD_FAILURE() << "no line of strace's: " << line;
    const Leave leave = this->leave();
    // The program is run, and from then on nothing else.
    ASSERT_EQ(trace.calls()[0].name, "execve");
    EXPECT_EQ(trace.calls()[0].texts(), std::vector{program_});
    for (std::size_t k = 1; k < trace.calls().size(); ++k)
        EXPECT_TRUE(leave.allows(trace.calls()[k])) << trace.calls()[k].line;

    // What it may do it did: so it was watched.
    struct Deed {
        const char* name;  // begins so
        std::string words;
    };
    for (const Deed& deed : {Deed{"connect", "/tmp/.X11-unix/X"}, Deed{"connect", sessionBus_.socket()},
                             Deed{"connect", systemBus_.socket()}, Deed{"rename", leave.defaults()},
                             Deed{"rename", leave.autostart()}, Deed{"unlink", leave.autostart()},
                             Deed{"rename", home() + "/.cache/fontconfig/"}, Deed{"clone", "CLONE_THREAD"},
                             Deed{"open", "/proc/stat"}}) {
        const bool isThere = std::any_of(trace.calls().begin(), trace.calls().end(), [&](const Call& call) {
            return call.name.starts_with(deed.name) && call.mentions(deed.words);
        });
        EXPECT_TRUE(isThere) << deed.name << ' ' << deed.words;
    }
}

TEST(LeaveTest, IsNarrow) {
    const Leave leave("/h", {"/run/bus"});
    struct Case {
        const char* line;
        bool isAllowed;
    };
    for (
        const auto& [line, isAllowed] : {
            Case{R"(openat(AT_FDCWD, "/etc/passwd", O_RDONLY|O_CLOEXEC) = 3)", true},
            Case{R"(openat(AT_FDCWD, "/etc/passwd", O_RDWR) = -1 EACCES (Permission denied))", false},
            Case{R"(open("/h/.config/norvane/.defaults.ini.a1B2c3.tmp", O_RDWR|O_CREAT|O_EXCL, 0600) = 3)",
                 true},
            Case{R"(open("/h/.config/norvane/.defaults.ini.a/../c.tmp", O_RDWR|O_CREAT|O_EXCL, 0600) = 3)",
                 false},
            Case{R"(openat(3, ".norvane.desktop.123456", O_RDWR|O_CREAT|O_EXCL, 0600) = 4)", false},
            Case{R"(openat2(3, "x", {flags=O_WRONLY, resolve=0}, 24) = 4)", false},
            Case{R"(openat(AT_FDCWD, "/proc/self/task/31/comm", O_RDWR) = 15)", true},
            Case{R"(openat(AT_FDCWD, "/proc/self/task/../mem/comm", O_RDWR) = 15)", false},
            Case{R"(openat(AT_FDCWD, "/h/.cache/fontconfig/a.NEW", O_RDWR|O_CREAT, 0644) = 15)", true},
            Case{R"(openat(AT_FDCWD, "/h/.cache/fontconfig/../a", O_RDWR|O_CREAT, 0644) = 15)", false},
            Case{R"(openat(AT_FDCWD, "/h/.cache/other", O_RDWR|O_CREAT, 0644) = 15)", false},
            Case{R"(creat("/h/.config/norvane/defaults.ini", 0600) = 3)", false},
            Case{
                R"(rename("/h/.config/norvane/.defaults.ini.abcdef.tmp", "/h/.config/norvane/defaults.ini") = 0)",
                true},
            Case{R"(rename("/h/.config/norvane/.defaults.ini.abcdef.tmp", "/h/.bashrc") = 0)", false},
            Case{R"(rename("/h/.cache/fontconfig/a", "/h/.bashrc") = 0)", false},
            Case{R"(unlink("/h/.config/autostart/norvane.desktop") = 0)", true},
            Case{R"(unlink("/h/.config/norvane/defaults.ini") = 0)", false},
            Case{R"(mkdir("/h/.config", 0700) = 0)", true},
            Case{R"(mkdir("/h/.con", 0700) = 0)", false},
            Case{R"(chmod("/h/.config/norvane", 0777) = 0)", false},
            Case{R"(socket(AF_UNIX, SOCK_STREAM|SOCK_CLOEXEC, 0) = 3)", true},
            Case{R"(socket(AF_INET6, SOCK_DGRAM, IPPROTO_IP) = 3)", false},
            Case{R"(socketpair(AF_INET, SOCK_STREAM, 0, [3, 4]) = 0)", false},
            Case{R"(connect(3, {sa_family=AF_UNIX, sun_path=@"/run/bus"}, 20) = 0)", true},
            Case{R"(connect(3, {sa_family=AF_UNIX, sun_path="/run/bus2"}, 20) = 0)", false},
            Case{R"(connect(3, {sa_family=AF_UNIX, sun_path="/run/b"...}, 20) = 0)", false},
            Case{R"(bind(3, {sa_family=AF_UNIX, sun_path="/run/bus"}, 20) = 0)", false},
            Case{R"(sendto(3, "\0", 1, MSG_NOSIGNAL, NULL, 0) = 1)", true},
            Case{R"(sendto(3, "a", 1, 0, {sa_family=AF_UNIX, sun_path="/run/log"}, 20) = 1)", false},
            Case{R"(clone3({flags=CLONE_VM|CLONE_THREAD, exit_signal=0} => {parent_tid=[7]}, 88) = 7)", true},
            Case{R"(clone(child_stack=NULL, flags=CLONE_CHILD_SETTID|SIGCHLD) = 7)", false},
            Case{R"(vfork() = 7)", false},
            Case{R"(execve("/bin/true", ["true"], 0x1 /* 2 vars */) = 0)", false},
            Case{R"(kill(7, SIGTERM) = 0)", false},
            Case{R"(setuid(0) = -1 EPERM (Operation not permitted))", false},
            Case{R"(capset({version=_LINUX_CAPABILITY_VERSION_3, pid=0}, NULL) = 0)", false},
            Case{R"(ptrace(PTRACE_ATTACH, 7) = 0)", false},
            Case{R"(prctl(PR_SET_NAME, "gmain") = 0)", true},
            Case{R"(prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_RAISE, CAP_KILL, 0, 0) = 0)", false},
        }) {
        const auto call = SystemCallTrace::parse(line);
        ASSERT_TRUE(call) << line;
        EXPECT_EQ(leave.allows(*call), isAllowed) << line;
    }
}

TEST(SystemCallTraceTest, CutsACallWhereItsPartsEnd) {
    struct Case {
        const char* line;
        std::vector<std::string> arguments;
        const char* result;
    };
    for (const auto& [line, arguments, result] :
         {Case{"f() = ?", {}, "?"},
          Case{R"x(f("a, \"b)", 1)   = -1 ENOENT (None))x", {R"x("a, \"b)")x", "1"}, "-1 ENOENT (None)"},
          Case{R"x(f({a=[1, 2], b="}"} => {c=(3)}, 4|5) = 0x7)x",
               {R"x({a=[1, 2], b="}"} => {c=(3)})x", "4|5"},
               "0x7"},
          Case{R"x(f(["x"], 0x1 /* 2 vars, or (3 */) = 0)x",
               {R"x(["x"])x", "0x1 /* 2 vars, or (3 */"},
               "0"}}) {
        const auto call = SystemCallTrace::parse(line);
        ASSERT_TRUE(call) << line;
        EXPECT_EQ(call->name, "f");
        EXPECT_EQ(call->arguments, arguments) << line;
        EXPECT_EQ(call->result, result) << line;
    }
}

TEST(SystemCallTraceTest, PutsInterruptedCallsTogetherAndFindsTheEnd) {
    const SystemCallTrace trace(
        "7 open(\"/a\", O_RDONLY <unfinished ...>\n"
        "8 mkdir(\"/b\" <unfinished ...>\n"
        "7 <... open resumed>) = 3\n"
        "7 --- SIGTERM {si_signo=SIGTERM} ---\n"
        "7 unlink(\"/c\" <unfinished ...>\n"
        "7 <... unlink resumed> <unfinished ...>) = ?\n"
        "9 exit(0 <unfinished ...>\n"
        "9 +++ exited with 0 +++\n"
        "7 +++ exited with 4 +++\n");
    std::vector<std::string> lines;
    for (const Call& call : trace.calls())
        lines.push_back(call.line);
    EXPECT_EQ(lines, (std::vector<std::string>{"open(\"/a\", O_RDONLY) = 3", "unlink(\"/c\") = ?",
                                               "exit(0) = ?", "mkdir(\"/b\") = ?"}));
    EXPECT_TRUE(trace.unreadable().empty());
    EXPECT_EQ(trace.exitStatus(), 4);
    EXPECT_EQ(SystemCallTrace("7 f() = 0\n8 +++ exited with 0 +++").exitStatus(), std::nullopt);
    EXPECT_EQ(SystemCallTrace("7 +++ killed by SIGKILL +++").exitStatus(), -1);
}

TEST(SystemCallTraceTest, KeepsApartWhatItCannotRead) {
    for (const std::string& line :
         {std::string("x"), std::string(" "), std::string("-7 f() = 0"), std::string("7"),
          std::string("99999999999 f() = 0"), std::string("7 f"), std::string("7 f()"),
          std::string("7 f(\"a) = 0"), std::string("7 f(/* ) = 0"), std::string("7 (1) = 0"),
          std::string("7 <... f resumed>) = 0"), std::string("7 f(\"\\"), "7 f" + std::string(1'000'000, '('),
          std::string("7 \0\xff(", 5)}) {
        const SystemCallTrace trace(line + '\n');
        EXPECT_TRUE(trace.calls().empty()) << line.substr(0, 40);
        EXPECT_EQ(trace.unreadable(), std::vector{line}) << line.substr(0, 40);
    }
}

}  // namespace
}  // namespace norvane
