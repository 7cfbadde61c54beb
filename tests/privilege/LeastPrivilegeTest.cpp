#include <unistd.h>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
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

// Whether there is a call that begins so and has these words in it.
bool isIn(const std::vector<std::string>& calls, const std::string& begin, const std::string& words) {
    return std::any_of(calls.begin(), calls.end(), [&](const std::string& call) {
        return call.starts_with(begin) && call.find(words) != std::string::npos;
    });
}

// What the program may do, and to what, by the calls as strace writes them down, one a line. All that is not
// said here it may not even try. Home and sockets are patterns.
std::regex leave(const std::string& home, const std::string& sockets) {
    // Sockets of the abstract kind, with an @ before the quotes, have the same names. What is sent goes over
    // a connection that there is, and not to an address of its own.
    std::string text = R"re((?:access|faccessat2?|stat|lstat|newfstatat|statx|statfs|readlink|readlinkat)\(.*
(?:getcwd|inotify_add_watch|get[eu]?[ug]id|exit|exit_group|shutdown)\(.*
(?:[gs]etsockopt|getsockname|getpeername|recvfrom|recvmsg|recvmmsg)\(.*
open(?:at2?)?\((?!.*O_(?:WRONLY|RDWR|CREAT|TRUNC|APPEND|TMPFILE)).*
open(?:at)?\(<(?:/dev/null|/proc/self/fd/1|%thread|%newDefaults|%newAutostart|%fonts)>.*
socket(?:pair)?\(AF_UNIX,.*
connect\(\d+, \{sa_family=AF_UNIX, sun_path=@?"(?:%sockets)"\},.*
send(?:to|msg|mmsg)\((?!.*sa_family=).*
clone3?\(.*CLONE_THREAD.*
prctl\(PR_SET_NAME,.*
mkdir(?:at)?\(<(?:%way)>.*
(?:mkdir|mkdirat|chmod|fchmodat|unlink|unlinkat)\(<%fonts>.*
(?:link|rename)(?:at2?)?\(<%fonts>, <%fonts>.*
rename(?:at2?)?\(<%newDefaults>, <%home/\.config/norvane/defaults\.ini>.*
rename(?:at2?)?\(<%newAutostart>, <%autostart>.*
unlink(?:at)?\(<(?:%newDefaults|%newAutostart|%autostart)>.*
\+\+\+ exited with 0 \+\+\+)re";
    // The folders that lead to ours are made where they are missing.
    std::string way = R"(%home/\.config(?:/norvane|/autostart)?)";
    for (fs::path folder = home; folder != folder.root_path(); folder = folder.parent_path())
        way += '|' + folder.string();
    const std::pair<std::string, std::string> words[] = {
        {"\n", "|"},
        {"<", R"re((?:AT_FDCWD, )?")re"},
        {">", "\""},
        {"%way", way},
        // A thread has its name from another one of the program.
        {"%thread", R"(/proc/self/task/\d+/comm)"},
        // What fontconfig knows of the fonts, renewed by it where fonts have come. It takes the first
        // folder that it may write to.
        {"%fonts", R"((?:%home/\.cache|(?:/var/cache/fontconfig|%home/\.cache/fontconfig|)"
                   R"(%home/\.fontconfig)(?://?(?!\.\./)[\w.-]+)*))"},
        {"%newDefaults", R"(%home/\.config/norvane/\.defaults\.ini\.\w{6}\.tmp)"},
        {"%newAutostart", R"(%home/\.config/autostart/\.norvane\.desktop\.\w{6})"},
        {"%autostart", R"(%home/\.config/autostart/norvane\.desktop)"},
        {"%home", home},
        {"%sockets", sockets}};
    for (const auto& [name, pattern] : words) {
        for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos; at += pattern.size())
            text.replace(at, name.size(), pattern);
    }
    return std::regex(text);
}

// The real program under strace, on a display and with buses of its own, from its first start to its end. Its
// user has a new home, with a font that fontconfig does not know. Where the test is root's, the user is
// nobody: much of what an ordinary user is refused root would be granted, and the program would try other
// things.
class LeastPrivilegeTest : public DesktopTest {
 protected:
    void begin() override {
        for (const PrivateBus* const bus : {&sessionBus_, &systemBus_})
            fs::permissions(bus->folder(), fs::perms(0755));
        home_.makeFolder("/.local/share/fonts");
        fs::copy_file("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                      home() + "/.local/share/fonts/DejaVuSans.ttf");
        if (isRoot_) {
            // Where it was built, nobody may be let in.
            program_ = home() + "/norvane";
            fs::copy_file(NORVANE_BINARY_DIR "/norvane", program_);
            ASSERT_EQ(runOn("", "chown -R nobody " + home()), 0);
        }
        const int status = runOn("", traced("probe", "test -x " + program_ + " -a -w " + home()));
        ASSERT_TRUE(status == 0 && !callsIn("probe").empty())
            << "strace may not trace, or the user does not reach the program: " << status << ". " << said();
        process_.emplace(std::vector<std::string>{"sh", "-c", traced("trace", program_)});
    }

    const std::string& home() const { return home_.path(); }
    // By strace and the program.
    std::string said() const { return records_.text("/errors"); }

    // The command under strace, with this in its environment and nothing else. Each thread has a record of
    // its own, so that none is interrupted by another.
    std::string traced(const std::string& name, const std::string& command) const {
        return "exec env -i PATH=/usr/bin:/bin HOME=" + home() + " DISPLAY=" + xvfb_.display() +
               " DBUS_SESSION_BUS_ADDRESS=" + sessionBus_.address() +
               " DBUS_SYSTEM_BUS_ADDRESS=" + systemBus_.address() + " strace -ff -q --seccomp-bpf -e " +
               kTraced + (isRoot_ ? " -u nobody" : "") + " -o " + records_.path() + '/' + name + ' ' +
               command + " 2>" + records_.path() + "/errors";
    }
    // The calls of all threads, and how they ended; first those that run programs.
    std::vector<std::string> callsIn(const std::string& name) const {
        std::vector<std::string> calls;
        for (const auto& entry : fs::directory_iterator(records_.path())) {
            if (entry.path().stem() != name) continue;
            std::ifstream file(entry.path());
            for (std::string line; std::getline(file, line);) {
                const auto place = line.starts_with("execve(") ? calls.begin() : calls.end();
                if (!line.starts_with("--- ")) calls.insert(place, line);  // a signal
            }
        }
        return calls;
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
        return comes([&] {
            return home_.text("/.config/norvane/defaults.ini").find(line + '\n') != std::string::npos;
        });
    }

    static constexpr int kWelcomeWidth = 340;
    static constexpr int kDashboardWidth = 520;
    static constexpr int kSettingsWidth = 360;

    const bool isRoot_ = geteuid() == 0;
    TemporaryFolder home_;
    TemporaryFolder records_;
    PrivateBus sessionBus_;
    PrivateBus systemBus_;
    std::string program_ = NORVANE_BINARY_DIR "/norvane";
    std::optional<ChildProcess> process_;
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
    const std::string autostart = home() + "/.config/autostart/norvane.desktop";
    for (const bool isStarted : {true, false}) {
        type("space");
        ASSERT_TRUE(comes([&] { return fs::exists(autostart) == isStarted; })) << said();
    }
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
    while (process_->firstLine()) {
    }  // until nobody is left to print one

    const std::vector<std::string> calls = callsIn("trace");
    EXPECT_TRUE(isIn(calls, "exit_group(0)", "")) << said();
    // The program is run, and from then on nothing else.
    EXPECT_TRUE(calls.front().starts_with("execve(\"" + program_ + '"')) << calls.front();
    const std::string session = sessionBus_.folder() + "/socket", system = systemBus_.folder() + "/socket";
    const std::regex allowed =
        leave(home(), "/tmp/\\.X11-unix/X" + xvfb_.display().substr(1) + '|' + session + '|' + system);
    for (std::size_t k = 1; k < calls.size(); ++k)
        EXPECT_TRUE(std::regex_match(calls[k], allowed)) << calls[k];

    // What it may do it did: so it was watched.
    for (const auto& [begin, words] : {std::pair<const char*, std::string>{"connect(", "/tmp/.X11-unix/X"},
                                       {"connect(", session},
                                       {"connect(", system},
                                       {"rename", home() + "/.config/norvane/defaults.ini"},
                                       {"rename", autostart},
                                       {"unlink", autostart},
                                       {"rename", home() + "/.cache/fontconfig/"},
                                       {"clone", "CLONE_THREAD"},
                                       {"open", "/proc/stat"}})
        EXPECT_TRUE(isIn(calls, begin, words)) << begin << ' ' << words;
}

TEST(LeaveTest, IsNarrow) {
    const std::regex allowed = leave("/h", "/run/bus");
    for (const char* const refused : {
             R"(openat(AT_FDCWD, "/etc/passwd", O_RDWR) = -1 EACCES (Permission denied))",
             R"(open("/h/.config/norvane/.defaults.ini.a/../c.tmp", O_RDWR|O_CREAT|O_EXCL, 0600) = 3)",
             R"(openat(3, ".norvane.desktop.123456", O_RDWR|O_CREAT|O_EXCL, 0600) = 4)",
             R"(openat(AT_FDCWD, "/proc/self/task/../mem/comm", O_RDWR) = 15)",
             R"(openat(AT_FDCWD, "/h/.cache/fontconfig/../a", O_RDWR|O_CREAT, 0644) = 15)",
             R"(rename("/h/.config/norvane/.defaults.ini.abcdef.tmp", "/h/.bashrc") = 0)",
             R"(mkdir("/h/.con", 0700) = 0)",
             R"(socket(AF_INET6, SOCK_DGRAM, IPPROTO_IP) = 3)",
             R"(connect(3, {sa_family=AF_UNIX, sun_path="/run/bus2"}, 20) = 0)",
             R"(sendto(3, "a", 1, 0, {sa_family=AF_UNIX, sun_path="/run/log"}, 20) = 1)",
             R"(clone(child_stack=NULL, flags=CLONE_CHILD_SETTID|SIGCHLD) = 7)",
             R"(execve("/bin/true", ["true"], 0x1 /* 2 vars */) = 0)",
             "",
         })
        EXPECT_FALSE(std::regex_match(refused, allowed)) << refused;
}

}  // namespace
}  // namespace norvane
