#include <sys/socket.h>
#include <sys/un.h>

#include "DesktopTest.h"
#include "linux/TemporaryFolder.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/StatusItem.h"
#include "PlayedTray.h"

namespace norvane {
namespace {

// The item on a screen without a window manager and without a bus: in a strip
// at once, and in a tray as soon as there is one.
class StatusItemTest : public DesktopTest {
 protected:
    void begin() override {
        item_ = windowServer_->statusItemWithLength(54);
        appeared_ = item_->onButtonDidAppear([this] { ++appearances_; });
    }
    // At which the item counts as being.
    bool comesTo(const PixelRect& place) {
        return comes([&] { return item_->buttonFrame() == place.inPoints(1); });
    }
    bool hasStrip() const { return bystander_->windowAt(kStrip).has_value(); }
    static bool isAsked(PlayedTray& tray) {
        return comes([&] { return tray.asking() != XCB_NONE; });
    }

    std::unique_ptr<StatusItem> item_;
    int appearances_ = 0;
    Cancellation appeared_;
};

TEST_F(StatusItemTest, GoesIntoATrayAndBackIntoTheStripAndIsNeverInBoth) {
    ASSERT_TRUE(comesTo(kStrip));
    ASSERT_TRUE(comes([&] { return hasStrip(); }));
    for (const PixelRect& part : {PixelRect{10, 9, 54, 22}, PixelRect{10, 9, 22, 22}}) {
        PlayedTray tray(xvfb_.display());
        ASSERT_TRUE(isAsked(tray));
        EXPECT_FALSE(hasStrip());
        EXPECT_EQ(item_->buttonFrame(), std::nullopt) << "not before it is taken in";
        const int before = appearances_;
        tray.embed(tray.asking(), part);
        EXPECT_TRUE(comesTo(part.moved(PlayedTray::kPanel.x, PlayedTray::kPanel.y))) << "narrow or wide";
        EXPECT_TRUE(comes([&] { return appearances_ == before + 1; }));
        EXPECT_FALSE(hasStrip());
        tray.close();
        tray.dismiss(tray.asking());
        EXPECT_TRUE(comes([&] { return hasStrip(); }));
        EXPECT_TRUE(comesTo(kStrip));
    }
}

#ifndef __SANITIZE_THREAD__  // the bus library's worker synchronises by means
                             // that it does not see
// In a window manager's place, so that a panel is waited for.
TEST_F(StatusItemTest, AnIconInATrayDoesNotWaitForABusThatNeverAnswers) {
    const std::uint32_t manages = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    xcb_change_window_attributes(bystander_->get(), bystander_->root(), XCB_CW_EVENT_MASK, &manages);
    bystander_->sync();
    item_.reset();
    PlayedTray tray(xvfb_.display());
    const TemporaryFolder folder;
    const std::string path = folder.path() + "/bus";
    const FileDescriptor silent(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(silent.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ASSERT_EQ(listen(silent.get(), 8), 0);

    BusConnection bus(mainQueue_, "unix:path=" + path);
    X11WindowServer server(*connection_, bus, systemBus_, layouts_, appearance_, clock_, mainQueue_);
    const auto item = server.statusItemWithLength(StatusItem::kSquareLength);
    turn(std::chrono::milliseconds(500));
    EXPECT_EQ(tray.asking(), XCB_NONE) << "a panel might tell of something better";
    EXPECT_TRUE(isAsked(tray)) << "but not for long";
}
#endif

TEST_F(StatusItemTest, ATrayThatTakesNobodyInIsLeftAlone) {
    PlayedTray tray(xvfb_.display());
    ASSERT_TRUE(isAsked(tray));
    EXPECT_TRUE(comes([&] { return hasStrip(); })) << "two seconds later";
    const xcb_window_t asked = tray.asking();
    item_->setLength(StatusItem::kSquareLength);
    turn(std::chrono::milliseconds(300));
    EXPECT_EQ(tray.asking(), asked) << "and not asked again";
    EXPECT_TRUE(item_->knowsItsPresses());
}

}  // namespace
}  // namespace norvane
