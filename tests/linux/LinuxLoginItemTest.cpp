#include "platform/linux/LinuxLoginItem.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include "linux/HeldQueue.h"
#include "linux/RunLoop.h"
#include "linux/TemporaryFolder.h"
#include "platform/linux/AutostartFiles.h"
#include "platform/linux/LinuxBackgroundQueue.h"
#include "platform/linux/LinuxMainBundle.h"
#include "platform/linux/LinuxMainQueue.h"

namespace norvane {
namespace {

namespace fs = std::filesystem;

constexpr const char* kUsers = "/home/autostart/norvane.desktop";
constexpr const char* kEverybodys = "/second/autostart/norvane.desktop";
constexpr int kNo = LinuxLoginItem::kNotRegistered;
constexpr int kYes = LinuxLoginItem::kEnabled;
constexpr const char* kEntry = "[Desktop Entry]\nType=Application\nExec=other\n";

class LoginItemTest : public testing::Test {
 protected:
    LoginItemTest() {
        surroundings.configHome = folder.path() + "/home";
        surroundings.configFolders = {folder.path() + "/first", folder.path() + "/second"};
        surroundings.desktops = {"GNOME"};
        surroundings.programFolders = {folder.path() + "/nowhere", folder.path() + "/bin"};
    }

    std::unique_ptr<LinuxLoginItem> loginItem() {
        return std::make_unique<LinuxLoginItem>(queue, background, surroundings, program);
    }
    int status() {
        const auto item = loginItem();
        std::optional<int> answer;
        item->status([&](int status) { answer = status; });
        EXPECT_FALSE(answer) << "not before the main loop turns";
        EXPECT_TRUE(runUntil([&] { return answer.has_value(); }));
        return answer.value_or(-1);
    }
    // "" where all went well.
    std::string changed(void (LinuxLoginItem::*change)(std::function<void(std::optional<std::string>)>)) {
        const auto item = loginItem();
        std::optional<std::string> answer;
        (item.get()->*change)([&](const std::optional<std::string>& error) {
            EXPECT_NE(error, "");
            answer = error.value_or("");
        });
        EXPECT_TRUE(runUntil([&] { return answer.has_value(); }));
        return answer.value_or("never");
    }
    std::string registered() { return changed(&LinuxLoginItem::registerItem); }
    std::string unregistered() { return changed(&LinuxLoginItem::unregisterItem); }

    bool exists(const std::string& file) const {
        return fs::exists(fs::symlink_status(folder.path() + file));
    }

    TemporaryFolder folder;
    AutostartSurroundings surroundings;
    std::string program = "/opt/a b/norvane";
    LinuxMainQueue queue;
    LinuxBackgroundQueue background;
};

TEST_F(LoginItemTest, IsEnabledByTheFirstFileAlone) {
    EXPECT_EQ(status(), kNo) << "no file at all";
    folder.write(kEverybodys, kEntry);
    EXPECT_EQ(status(), kYes) << "one for all users";
    folder.write("/first/autostart/norvane.desktop", std::string(kEntry) + "Hidden=true\n");
    EXPECT_EQ(status(), kNo) << "a more important one";
    folder.write(kUsers, std::string(kEntry) + "OnlyShowIn=GNOME\n");
    EXPECT_EQ(status(), kYes) << "the user's";
    surroundings.desktops = {"KDE"};
    EXPECT_EQ(status(), kNo) << "in another desktop";
    surroundings.configHome.clear();
    surroundings.configFolders = {folder.path() + "/second"};
    EXPECT_EQ(status(), kYes) << "a user without a home";
}

TEST_F(LoginItemTest, IsNotEnabledByWhatIsNoEntry) {
    folder.write(kEverybodys, kEntry);
    folder.write(kUsers, "");
    EXPECT_EQ(status(), kNo) << "empty";
    std::string large = kEntry;
    large.append(AutostartFiles::kLargestBytes - large.size(), '\n');
    folder.write(kUsers, large);
    EXPECT_EQ(status(), kYes) << "as large as may be";
    folder.write(kUsers, large + '\n');
    EXPECT_EQ(status(), kNo) << "larger";
    folder.remove(kUsers);
    folder.makeFolder(kUsers);
    EXPECT_EQ(status(), kNo) << "a folder";
    folder.remove(kUsers);
    ASSERT_EQ(mkfifo((folder.path() + kUsers).c_str(), 0600), 0);
    EXPECT_EQ(status(), kNo) << "a pipe, which nobody waits for";
    folder.remove(kUsers);
    folder.link(kUsers, "/dev/null");
    EXPECT_EQ(status(), kNo) << "masked";
    folder.remove(kUsers);
    folder.link(kUsers, "gone");
    EXPECT_EQ(status(), kYes) << "a link to nothing is no file";
}

TEST_F(LoginItemTest, TriesTheProgramThatTheEntryNames) {
    const std::string absolute = folder.path() + "/bin/tried";
    const auto statusTrying = [&](const std::string& tried) {
        folder.write(kUsers, kEntry + ("TryExec=" + tried + '\n'));
        return status();
    };
    EXPECT_EQ(statusTrying("tried"), kNo);
    folder.write("/bin/tried", "");
    EXPECT_EQ(statusTrying("tried"), kNo) << "no program yet";
    ASSERT_EQ(chmod(absolute.c_str(), 0700), 0);
    EXPECT_EQ(statusTrying("tried"), kYes);
    EXPECT_EQ(statusTrying(absolute), kYes);
    EXPECT_EQ(statusTrying("bin/tried"), kNo);
    EXPECT_EQ(statusTrying(folder.path() + "/bin"), kNo) << "a folder";
}

TEST_F(LoginItemTest, IsRegisteredByAFreshFileOfTheUsers) {
    constexpr const char* kFresh =
        "[Desktop Entry]\nType=Application\nName=Norvane\nExec=\"/opt/a b/norvane\"\n"
        "X-GNOME-Autostart-enabled=true\n";
    folder.write(kEverybodys, std::string(kEntry) + "Hidden=true\n");
    EXPECT_EQ(registered(), "") << "with all the folders above";
    EXPECT_EQ(folder.text(kUsers), kFresh);
    EXPECT_EQ(status(), kYes);
    folder.write(kUsers, std::string(kEntry) + "X-MATE-Autostart-enabled=false\nNotShowIn=GNOME\n");
    EXPECT_EQ(registered(), "");
    EXPECT_EQ(folder.text(kUsers), kFresh) << "whatever was there";
    folder.remove(kUsers);
    folder.write("/dotfiles/entry", "mine");
    folder.link(kUsers, "../../dotfiles/entry");
    EXPECT_EQ(registered(), "");
    EXPECT_EQ(folder.text(kUsers), kFresh);
    EXPECT_EQ(folder.text("/dotfiles/entry"), "mine") << "no link any more";
    EXPECT_EQ(folder.root().names("/home/autostart"), std::vector<std::string>{"norvane.desktop"});
}

TEST_F(LoginItemTest, IsUnregisteredByNoFileOrOneThatHidesTheOthers) {
    EXPECT_EQ(unregistered(), "") << "nothing to do";
    EXPECT_FALSE(exists("/home"));
    EXPECT_EQ(registered(), "");
    EXPECT_EQ(unregistered(), "");
    EXPECT_FALSE(exists(kUsers));
    EXPECT_EQ(status(), kNo);

    folder.write(kEverybodys, kEntry);
    EXPECT_EQ(unregistered(), "");
    EXPECT_EQ(folder.text(kUsers), "[Desktop Entry]\nType=Application\nName=Norvane\nHidden=true\n");
    EXPECT_EQ(status(), kNo);
    EXPECT_EQ(registered(), "");
    EXPECT_EQ(status(), kYes);
}

TEST_F(LoginItemTest, SaysWhatCannotBeDoneAndLeavesNothingBehind) {
    folder.makeFolder(kUsers);
    EXPECT_EQ(registered(), "Cannot write " + folder.path() + kUsers + ": Is a directory");
    EXPECT_EQ(unregistered(), "Cannot remove " + folder.path() + kUsers + ": Is a directory");
    EXPECT_EQ(folder.root().names("/home/autostart"), std::vector<std::string>{"norvane.desktop"});

    folder.remove("/home");
    folder.write("/home", "a file");
    EXPECT_EQ(registered(), "Cannot make " + folder.path() + "/home/autostart: Not a directory");
    EXPECT_EQ(unregistered(), "") << "no file, as asked";

    program = "/a=b";
    EXPECT_EQ(registered(), "No desktop entry can name the program \"/a=b\"");
    program = "/norvane";
    surroundings.configHome.clear();
    EXPECT_EQ(registered(), "The user has no folder for settings");
    EXPECT_EQ(unregistered(), "");
    folder.write(kEverybodys, kEntry);
    EXPECT_EQ(unregistered(), "The user has no folder for settings");

    // A folder whose disk is read-only for everybody, the one who may do everything included.
    surroundings.configHome = "/proc/self";
    surroundings.configFolders.clear();
    EXPECT_TRUE(registered().starts_with("Cannot make /proc/self/autostart: ")) << registered();
}

TEST_F(LoginItemTest, AnswersInOrderOnceADiskThatHungIsBack) {
    HeldQueue disk;
    auto item = std::make_unique<LinuxLoginItem>(queue, disk, surroundings, program);
    std::vector<std::string> answers;
    const auto note = [&](const std::optional<std::string>& error) {
        answers.push_back(error.value_or("done"));
    };
    const auto noteStatus = [&](int status) { answers.push_back(std::to_string(status)); };
    item->status(noteStatus);
    item->registerItem(note);
    item->status(noteStatus);
    item->unregisterItem(note);
    item->status([&](int status) {
        noteStatus(status);
        item->registerItem(note);  // once more, from within an answer
    });
    ASSERT_EQ(disk.tasks.size(), 1u) << "what comes later waits behind";
    disk.tasks.front()();
    EXPECT_TRUE(answers.empty());
    EXPECT_TRUE(runUntil([&] { return answers.size() == 5; }));
    EXPECT_EQ(answers, (std::vector<std::string>{"0", "done", "1", "done", "0"}));

    ASSERT_EQ(disk.tasks.size(), 2u);
    item.reset();
    disk.tasks.back()();
    EXPECT_TRUE(exists(kUsers)) << "done though nobody is left to be told";
    bool hasTurned = false;
    queue.async([&] { hasTurned = true; });
    EXPECT_TRUE(runUntil([&] { return hasTurned; }));
    EXPECT_EQ(answers.size(), 5u);
}

TEST(RunningProgram, IsThisTestWithTheVersionThatTheBuildDeclares) {
    EXPECT_TRUE(fs::equivalent(LinuxLoginItem::runningProgram(), "/proc/self/exe"));
    std::ostringstream build;
    build << std::ifstream(NORVANE_SOURCE_DIR "/CMakeLists.txt").rdbuf();
    const LinuxMainBundle bundle;
    const auto version = bundle.objectForInfoDictionaryKey(MainBundle::kShortVersion);
    ASSERT_TRUE(version && version->text() != nullptr && !version->text()->empty());
    EXPECT_NE(build.str().find("project(norvane VERSION " + *version->text() + ' '), std::string::npos);
    EXPECT_FALSE(bundle.objectForInfoDictionaryKey(""));
}

}  // namespace
}  // namespace norvane
