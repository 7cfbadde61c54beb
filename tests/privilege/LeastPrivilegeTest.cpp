#include <unistd.h>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <regex>

#include "bus/ChildProcess.h"
#include "bus/PrivateBus.h"
#include "linux/TemporaryFolder.h"
#include "windows/DesktopTest.h"

namespace norvane {
namespace {

namespace fs = std::filesystem;

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

// Whether there is a call that begins so and has these words in it.
bool isIn(const std::vector<std::string>& calls, const std::string& begin, const std::string& words) {
    return std::any_of(calls.begin(), calls.end(), [&](const std::string& call) {
        return call.starts_with(begin) && call.find(words) != std::string::npos;
    });
}

// What the program may do, and to what, by the calls as strace writes them down. All that is not said here it
// may not even try.
class Leave {
 public:
    // Of the home and the sockets, as patterns.
    Leave(const std::string& home, const std::string& sockets) {
        const std::string newDefaults = home + R"(/\.config/norvane/\.defaults\.ini\.\w{6}\.tmp)";
        const std::string newAutostart = home + R"(/\.config/autostart/\.norvane\.desktop\.\w{6})";
        const std::string autostart = home + R"(/\.config/autostart/norvane\.desktop)";
        // What fontconfig knows of the fonts, renewed by it where fonts have come. It takes the first folder
        // that it may write to.
        const std::string fontCache = "(?:" + home + R"(/\.cache|(?:/var/cache/fontconfig|)" + home +
                                      R"(/\.cache/fontconfig|)" + home +
                                      R"(/\.fontconfig)(?://?(?!\.\./)[\w.-]+)*))";
        // The folders that lead to ours are made where they are missing.
        std::string way = home + R"(/\.config(?:/norvane|/autostart)?)";
        for (fs::path folder = home; folder != folder.root_path(); folder = folder.parent_path())
            way += '|' + folder.string();
        // A thread has its name from another one of the program.
        const std::string written = R"((?:/dev/null|/proc/self/fd/1|/proc/self/task/\d+/comm|)" +
                                    newDefaults + '|' + newAutostart + '|' + fontCache + ')';
        const auto at = [](const std::string& path) { return R"re((?:AT_FDCWD, )?")re" + path + '"'; };
        const auto moved = [&](const std::string& from, const std::string& to) {
            return R"(rename(?:at2?)?\()" + at(from) + ", " + at(to) + ".*";
        };
        for (const std::string& allowed : {
                 std::string(
                     R"((?:access|faccessat2?|stat|lstat|newfstatat|statx|statfs|readlink|readlinkat)\(.*)"),
                 std::string(R"((?:getcwd|inotify_add_watch|get[eu]?[ug]id|exit|exit_group|shutdown)\(.*)"),
                 std::string(R"((?:[gs]etsockopt|getsockname|getpeername|recvfrom|recvmsg|recvmmsg)\(.*)"),
                 std::string(R"(open(?:at2?)?\((?!.*O_(?:WRONLY|RDWR|CREAT|TRUNC|APPEND|TMPFILE)).*)"),
                 R"(open(?:at)?\()" + at(written) + ".*",
                 std::string(R"(socket(?:pair)?\(AF_UNIX,.*)"),
                 // Those of the abstract kind, with an @ before the quotes, have the same names.
                 R"re(connect\(\d+, \{sa_family=AF_UNIX, sun_path=@?"(?:)re" + sockets + R"re()"\},.*)re",
                 // Over a connection that there is, and not with an address of its own.
                 std::string(R"(send(?:to|msg|mmsg)\((?!.*sa_family=).*)"),
                 std::string(R"(clone3?\(.*CLONE_THREAD.*)"),
                 std::string(R"(prctl\(PR_SET_NAME,.*)"),
                 R"(mkdir(?:at)?\()" + at("(?:" + way + ')') + ".*",
                 R"((?:mkdir|mkdirat|chmod|fchmodat|unlink|unlinkat)\()" + at(fontCache) + ".*",
                 R"(link(?:at)?\()" + at(fontCache) + ", " + at(fontCache) + ".*",
                 moved(fontCache, fontCache),
                 moved(newDefaults, home + R"(/\.config/norvane/defaults\.ini)"),
                 moved(newAutostart, autostart),
                 R"(unlink(?:at)?\()" + at("(?:" + newDefaults + '|' + newAutostart + '|' + autostart + ')') +
                     ".*",
             })
            allowed_.emplace_back(allowed);
    }

    bool allows(const std::string& call) const {
        return std::any_of(allowed_.begin(), allowed_.end(),
                           [&](const std::regex& each) { return std::regex_match(call, each); });
    }

 private:
    std::vector<std::regex> allowed_;
};

// A bus that another user's programs may come to, too.
class OpenBus : public PrivateBus {
 public:
    OpenBus() {
        fs::permissions(folder(), fs::perms(0755));
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
    void begin() override {
        home_.makeFolder("/.local/share/fonts");
        fs::copy_file("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                      home() + "/.local/share/fonts/DejaVuSans.ttf");
        if (isRoot_) {
            // Where it was built, nobody may be let in.
            program_ = home() + "/norvane";
            fs::copy_file(NORVANE_BINARY_DIR "/norvane", program_);
            ASSERT_EQ(runOn("", {"chown", "-R", kNobody, home()}), 0);
        }
        const int status = runOn("", traced("probe", {"test", "-x", program_, "-a", "-w", home()}));
        ASSERT_TRUE(status == 0 && !callsIn("probe").empty())
            << "Nothing can be said here: strace may not trace, or the user does not reach the program. "
               "Status "
            << status << ". " << said();
        process_ = std::make_unique<ChildProcess>(traced("trace", {program_}));
    }

    const std::string& home() const { return home_.path(); }
    // By strace and the program.
    std::string said() const { return textOf(records_.path() + "/errors"); }

    // The command under strace, with this in its environment and nothing else. Each thread has a record of
    // its own, so that none is interrupted by another.
    std::vector<std::string> traced(const std::string& name, const std::vector<std::string>& command) const {
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
                                       "-ff",
                                       "-q",
                                       "--seccomp-bpf",
                                       "-e",
                                       kTraced,
                                       "-o",
                                       records_.path() + '/' + name};
        if (isRoot_) whole.insert(whole.end(), {"-u", kNobody});
        whole.insert(whole.end(), command.begin(), command.end());
        return whole;
    }
    // The calls of all threads, and how they ended; first those of the program's first thread.
    std::vector<std::string> callsIn(const std::string& name) const {
        std::vector<std::string> calls;
        for (const auto& entry : fs::directory_iterator(records_.path())) {
            if (entry.path().stem() != name) continue;
            std::vector<std::string> more;
            std::ifstream file(entry.path());
            for (std::string line; std::getline(file, line);) {
                if (!line.starts_with("--- ")) more.push_back(line);  // a signal
            }
            const bool isFirst = !more.empty() && more.front().starts_with("execve(");
            calls.insert(isFirst ? calls.begin() : calls.end(), more.begin(), more.end());
        }
        return calls;
    }
    bool hasEnded() const {
        const auto calls = callsIn("trace");
        const auto exit = std::find_if(calls.begin(), calls.end(), [](const std::string& call) {
            return call.starts_with("exit_group(");
        });
        return exit != calls.end() && exit + 1 != calls.end();
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
        const std::string file = home() + "/.config/norvane/defaults.ini";
        return comes([&] { return textOf(file).find(line + '\n') != std::string::npos; });
    }
    bool comesToStartAtLogin(bool isStarted) {
        const std::string file = home() + "/.config/autostart/norvane.desktop";
        return comes([&] { return fs::exists(file) == isStarted; });
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
    ASSERT_TRUE(comes([&] { return hasEnded(); })) << said();

    const std::vector<std::string> calls = callsIn("trace");
    EXPECT_TRUE(isIn(calls, "exit_group(0)", "")) << said();
    // The program is run, and from then on nothing else.
    EXPECT_TRUE(calls.front().starts_with("execve(\"" + program_ + '"')) << calls.front();
    const Leave leave(home(), "/tmp/\\.X11-unix/X" + xvfb_.display().substr(1) + '|' + sessionBus_.socket() +
                                  '|' + systemBus_.socket());
    for (std::size_t k = 1; k < calls.size(); ++k)
        EXPECT_TRUE(leave.allows(calls[k]) || calls[k] == "+++ exited with 0 +++") << calls[k];

    // What it may do it did: so it was watched.
    struct Deed {
        const char* name;  // begins so
        std::string words;
    };
    for (const Deed& deed :
         {Deed{"connect(", "/tmp/.X11-unix/X"}, Deed{"connect(", sessionBus_.socket()},
          Deed{"connect(", systemBus_.socket()}, Deed{"rename", home() + "/.config/norvane/defaults.ini"},
          Deed{"rename", home() + "/.config/autostart/norvane.desktop"},
          Deed{"unlink", home() + "/.config/autostart/norvane.desktop"},
          Deed{"rename", home() + "/.cache/fontconfig/"}, Deed{"clone", "CLONE_THREAD"},
          Deed{"open", "/proc/stat"}}) {
        EXPECT_TRUE(isIn(calls, deed.name, deed.words)) << deed.name << ' ' << deed.words;
    }
}

TEST(LeaveTest, IsNarrow) {
    const Leave leave("/h", "/run/bus");
    for (
        const char* const allowed : {
            R"(openat(AT_FDCWD, "/etc/passwd", O_RDONLY|O_CLOEXEC) = 3)",
            R"(open("/h/.config/norvane/.defaults.ini.a1B2c3.tmp", O_RDWR|O_CREAT|O_EXCL, 0600) = 3)",
            R"(openat(AT_FDCWD, "/h/.cache/fontconfig/a.NEW", O_RDWR|O_CREAT, 0644) = 15)",
            R"(rename("/h/.config/norvane/.defaults.ini.abcdef.tmp", "/h/.config/norvane/defaults.ini") = 0)",
            R"(connect(3, {sa_family=AF_UNIX, sun_path=@"/run/bus"}, 20) = 0)",
            R"(clone3({flags=CLONE_VM|CLONE_THREAD, exit_signal=0} => {parent_tid=[7]}, 88) = 7)",
        })
        EXPECT_TRUE(leave.allows(allowed)) << allowed;
    for (const char* const refused : {
             R"(openat(AT_FDCWD, "/etc/passwd", O_RDWR) = -1 EACCES (Permission denied))",
             R"(open("/h/.config/norvane/.defaults.ini.a/../c.tmp", O_RDWR|O_CREAT|O_EXCL, 0600) = 3)",
             R"(openat(3, ".norvane.desktop.123456", O_RDWR|O_CREAT|O_EXCL, 0600) = 4)",
             R"(openat2(3, "x", {flags=O_WRONLY, resolve=0}, 24) = 4)",
             R"(openat(AT_FDCWD, "/proc/self/task/../mem/comm", O_RDWR) = 15)",
             R"(openat(AT_FDCWD, "/h/.cache/fontconfig/../a", O_RDWR|O_CREAT, 0644) = 15)",
             R"(openat(AT_FDCWD, "/h/.cache/other", O_RDWR|O_CREAT, 0644) = 15)",
             R"(creat("/h/.config/norvane/defaults.ini", 0600) = 3)",
             R"(rename("/h/.config/norvane/.defaults.ini.abcdef.tmp", "/h/.bashrc") = 0)",
             R"(rename("/h/.cache/fontconfig/a", "/h/.bashrc") = 0)",
             R"(unlink("/h/.config/norvane/defaults.ini") = 0)",
             R"(mkdir("/h/.con", 0700) = 0)",
             R"(chmod("/h/.config/norvane", 0777) = 0)",
             R"(socket(AF_INET6, SOCK_DGRAM, IPPROTO_IP) = 3)",
             R"(connect(3, {sa_family=AF_UNIX, sun_path="/run/bus2"}, 20) = 0)",
             R"(connect(3, {sa_family=AF_UNIX, sun_path="/run/b"...}, 20) = 0)",
             R"(bind(3, {sa_family=AF_UNIX, sun_path="/run/bus"}, 20) = 0)",
             R"(sendto(3, "a", 1, 0, {sa_family=AF_UNIX, sun_path="/run/log"}, 20) = 1)",
             R"(clone(child_stack=NULL, flags=CLONE_CHILD_SETTID|SIGCHLD) = 7)",
             R"(execve("/bin/true", ["true"], 0x1 /* 2 vars */) = 0)",
             R"(setuid(0) = -1 EPERM (Operation not permitted))",
             R"(prctl(PR_CAP_AMBIENT, PR_CAP_AMBIENT_RAISE, CAP_KILL, 0, 0) = 0)",
             "",
         })
        EXPECT_FALSE(leave.allows(refused)) << refused;
}

}  // namespace
}  // namespace norvane
