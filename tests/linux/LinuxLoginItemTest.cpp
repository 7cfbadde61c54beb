#include "platform/linux/LinuxLoginItem.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <functional>
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

    int status() {
        LinuxLoginItem item(queue, background, surroundings, program);
        std::optional<int> answer;
        item.status([&](int status) { answer = status; });
        EXPECT_FALSE(answer) << "not before the main loop turns";
        EXPECT_TRUE(runUntil([&] { return answer.has_value(); }));
        return answer.value_or(-1);
    }
    // "" where all went well.
    std::string changed(void (LinuxLoginItem::*change)(std::function<void(std::optional<std::string>)>)) {
        LinuxLoginItem item(queue, background, surroundings, program);
        std::optional<std::string> answer;
        (item.*change)([&](const std::optional<std::string>& error) {
            EXPECT_NE(error, "");
            answer = error.value_or("");
        });
        EXPECT_TRUE(runUntil([&] { return answer.has_value(); }));
        return answer.value_or("never");
    }
    std::string registered() { return changed(&LinuxLoginItem::registerItem); }
    std::string unregistered() { return changed(&LinuxLoginItem::unregisterItem); }

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

TEST_F(LoginItemTest, IsNotEnabledByWhatIsNoEntryNorWithoutTheProgramThatItTries) {
    const std::string users = folder.path() + kUsers;
    std::string large = kEntry;
    large.append(AutostartFiles::kLargestBytes - large.size(), '\n');
    const auto trying = [this](const std::string& tried) {
        return [this, tried] { folder.write(kUsers, kEntry + ("TryExec=" + tried + '\n')); };
    };
    folder.write(kEverybodys, kEntry);
    folder.makeFolder("/home/autostart");
    folder.write("/bin/text", "");
    folder.write("/bin/tried", "");
    ASSERT_EQ(chmod((folder.path() + "/bin/tried").c_str(), 0700), 0);
    struct Case {
        const char* name;
        std::function<void()> make;
        int want;
    };
    for (const auto& [name, make, want] : std::vector<Case>{
             {"empty", [&] { folder.write(kUsers, ""); }, kNo},
             {"as large as may be", [&] { folder.write(kUsers, large); }, kYes},
             {"larger", [&] { folder.write(kUsers, large + '\n'); }, kNo},
             {"a folder", [&] { folder.makeFolder(kUsers); }, kNo},
             {"a pipe, which nobody waits for", [&] { mkfifo(users.c_str(), 0600); }, kNo},
             {"masked", [&] { folder.link(kUsers, "/dev/null"); }, kNo},
             {"a link to nothing, which is no file", [&] { folder.link(kUsers, "gone"); }, kYes},
             {"tries what is missing", trying("missing"), kNo},
             {"tries what is no program", trying("text"), kNo},
             {"tries a program", trying("tried"), kYes},
             {"tries one by its whole path", trying(folder.path() + "/bin/tried"), kYes},
             {"tries one by half a path", trying("bin/tried"), kNo},
             {"tries a folder", trying(folder.path() + "/bin"), kNo},
         }) {
        folder.remove(kUsers);
        make();
        EXPECT_EQ(status(), want) << name;
    }
}

TEST_F(LoginItemTest, IsRegisteredByAFreshFileAndUnregisteredByNoneOrOneThatHidesTheOthers) {
    constexpr const char* kFresh =
        "[Desktop Entry]\nType=Application\nName=Norvane\nExec=\"/opt/a b/norvane\"\n"
        "X-GNOME-Autostart-enabled=true\n";
    EXPECT_EQ(unregistered(), "") << "nothing to do";
    EXPECT_TRUE(folder.root().names("/home").empty());
    EXPECT_EQ(registered(), "") << "with all the folders above";
    EXPECT_EQ(status(), kYes);
    EXPECT_EQ(unregistered(), "");
    EXPECT_TRUE(folder.root().names("/home/autostart").empty());
    folder.write("/dotfiles/entry", "mine");
    folder.link(kUsers, "../../dotfiles/entry");
    EXPECT_EQ(registered(), "");
    EXPECT_EQ(folder.text(kUsers), kFresh) << "whatever was there";
    EXPECT_EQ(folder.text("/dotfiles/entry"), "mine") << "no link any more";
    EXPECT_EQ(folder.root().names("/home/autostart"), std::vector<std::string>{"norvane.desktop"});

    folder.write(kEverybodys, kEntry);
    EXPECT_EQ(unregistered(), "");
    EXPECT_EQ(folder.text(kUsers), "[Desktop Entry]\nType=Application\nName=Norvane\nHidden=true\n");
    EXPECT_EQ(status(), kNo);
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
    folder.write(kEverybodys, kEntry);
    EXPECT_EQ(unregistered(), "The user has no folder for settings");
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
    EXPECT_FALSE(folder.text(kUsers).empty()) << "done though nobody is left to be told";
    bool hasTurned = false;
    queue.async([&] { hasTurned = true; });
    EXPECT_TRUE(runUntil([&] { return hasTurned; }));
    EXPECT_EQ(answers.size(), 5u);
}

TEST(RunningProgram, IsThisTest) {
    EXPECT_TRUE(std::filesystem::equivalent(LinuxLoginItem::runningProgram(), "/proc/self/exe"));
    EXPECT_TRUE(LinuxMainBundle().objectForInfoDictionaryKey(MainBundle::kShortVersion));
}

}  // namespace
}  // namespace norvane
