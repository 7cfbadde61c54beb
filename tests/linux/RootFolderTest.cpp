#include "platform/linux/RootFolder.h"

#include <gtest/gtest.h>

#include "platform/linux/KeptFile.h"

#include "CountingFileObserver.h"
#include "TemporaryFolder.h"

namespace norvane {
namespace {

// Whoever follows the links, the answers are the same.
class RootFolderLinks : public testing::TestWithParam<RootFolder::Links> {
 protected:
    TemporaryFolder machine;
    RootFolder root() const { return RootFolder(machine.path() + "/root", nullptr, GetParam()); }
};

INSTANTIATE_TEST_SUITE_P(Each, RootFolderLinks,
                         testing::Values(RootFolder::Links::kernelFollows, RootFolder::Links::weFollow));

TEST_P(RootFolderLinks, AreFollowedInsideThePrefix) {
    machine.write("/root/sys/devices/pci/disk/stat", "inside");
    machine.link("/root/sys/class/block/disk", "../../devices/pci/disk");
    machine.link("/root/absolute", "/sys/class/block/disk/stat");
    machine.link("/root/sys/twice", "../absolute");
    machine.link("/root/sys/class/deep", "/sys/devices/pci/disk");
    for (const char* path : {"/sys/devices/pci/disk/stat", "/sys/class/block/disk/stat", "/absolute",
                             "/sys/twice", "/sys/class/deep/stat", "/sys/./class//block/disk/../disk/stat"}) {
        EXPECT_EQ(root().read(path), "inside") << path;
    }
    EXPECT_EQ(root().names("/sys/class/block/disk/"), std::vector<std::string>{"stat"});
    EXPECT_EQ(root().readLink("/sys/class/block/disk"), "../../devices/pci/disk");
    EXPECT_EQ(root().readLink("/sys/class/block/disk/stat"), std::nullopt) << "not a link";
}

TEST_P(RootFolderLinks, NeverLeadOutOfThePrefix) {
    machine.write("/secret", "outside");
    machine.write("/root/etc/x", "");
    machine.link("/root/up", "../secret");
    machine.link("/root/etc/up", "../../../../secret");
    machine.link("/root/absolute", machine.path() + "/secret");
    for (const char* path : {"/up", "/etc/up", "/absolute", "/../secret", "/etc/../../secret"})
        EXPECT_EQ(root().read(path), std::nullopt) << path;
    machine.write("/root/secret", "inside");
    for (const char* path : {"/up", "/etc/up", "/../secret"})
        EXPECT_EQ(root().read(path), "inside") << path;
}

TEST_P(RootFolderLinks, MayLoopOrDangle) {
    machine.link("/root/a", "b");
    machine.link("/root/b", "a");
    machine.link("/root/nowhere", "missing/too");
    EXPECT_EQ(root().read("/a"), std::nullopt);
    EXPECT_EQ(root().read("/a/x"), std::nullopt);
    EXPECT_EQ(root().read("/nowhere"), std::nullopt);
    EXPECT_TRUE(root().names("/a").empty());
}

TEST(RootFolder, AnswersNothingForWhatIsMissingOrTooLong) {
    TemporaryFolder machine;
    const std::string text(100'000, 'x');  // longer than any first buffer
    machine.write("/file", text);
    EXPECT_EQ(machine.root().read("/file", 100'000), text);
    EXPECT_EQ(machine.root().read("/file", 99'999), std::nullopt);
    EXPECT_EQ(machine.root().read("/none"), std::nullopt);
    EXPECT_EQ(machine.root().read("/"), std::nullopt) << "a folder has no text";
    EXPECT_EQ(RootFolder(machine.path() + "/none").read("/file"), std::nullopt);
    EXPECT_EQ(RootFolder("").read(machine.path() + "/file", 100'000), text);
}

class KeptFileTest : public testing::Test {
 protected:
    TemporaryFolder machine;
    std::shared_ptr<CountingFileObserver> observer = std::make_shared<CountingFileObserver>();
};

TEST_F(KeptFileTest, SeesEachNewTextThroughOneDescriptor) {
    machine.write("/f", "one");
    KeptFile file(machine.root(observer), "/f", 6);
    EXPECT_EQ(file.read(), "one");
    machine.write("/f", "three!");
    EXPECT_EQ(file.read(), "three!");
    machine.write("/f", "1234567");
    EXPECT_EQ(file.read(), std::nullopt) << "above the limit";
    machine.write("/f", "");
    EXPECT_EQ(file.read(), "");
    EXPECT_EQ(observer->opened.size(), 1u);
}

TEST_F(KeptFileTest, LooksAgainForAFileThatWasMissingOrFailedForGood) {
    KeptFile file(machine.root(observer), "/f");
    EXPECT_EQ(file.read(), std::nullopt);
    EXPECT_FALSE(file.exists());
    machine.makeFolder("/f");  // opens, but cannot be read
    EXPECT_EQ(file.read(), std::nullopt);
    machine.remove("/f");
    machine.write("/f", "there");
    EXPECT_EQ(file.read(), "there");
    EXPECT_TRUE(file.exists());

    KeptFile rare(machine.root(observer), "/g", 100, 3);
    observer->forget();
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(rare.read(), std::nullopt);
    EXPECT_EQ(observer->opened.size(), 2u) << "seldom, where hardly any machine has it";
    machine.write("/g", "x");
    EXPECT_EQ(rare.read(), "x");
}

TEST_F(KeptFileTest, KeepsTheDescriptorThroughAFailureThatMayPass) {
    // The first page of memory is never there: an input/output error.
    KeptFile file(RootFolder("", observer), "/proc/self/mem");
    EXPECT_EQ(file.read(), std::nullopt);
    EXPECT_EQ(file.read(), std::nullopt);
    EXPECT_TRUE(file.exists());
    EXPECT_EQ(observer->opened.size(), 1u);
}

}  // namespace
}  // namespace norvane
