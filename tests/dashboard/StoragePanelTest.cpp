#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dashboard/ExternalVolume.h"
#include "dashboard/MenuRootView.h"
#include "dashboard/ShownVolumeName.h"
#include "dashboard/StorageDetailListView.h"
#include "dashboard/StorageExpandedView.h"
#include "ShownElement.h"

namespace norvane {
namespace {

using namespace std::chrono_literals;
using Role = AccessibleRole;
using Told = std::vector<std::string>;
using Volumes = std::vector<VolumeURL>;

VolumeURL volume(const std::string& path, std::optional<bool> isInternal = false,
                 std::optional<bool> isEjectable = {}, std::optional<bool> isRoot = {},
                 std::int64_t freeGB = 41, std::int64_t totalGB = 64) {
    constexpr std::int64_t kGB = 1'000'000'000;
    return {path, VolumeResourceValues{{}, totalGB * kGB, freeGB * kGB, isInternal, isRoot, isEjectable}};
}

TEST(ExternalVolumes, AreThoseThatTheUserMayTakeAway) {
    const Volumes listed{volume("/media/image"),
                         volume("/media/card", true, true),
                         volume("/media/unknown", {}, true),
                         volume("/media/fast", false, false, false),
                         {"/x", VolumeResourceValues{"Named", {}, 5, false, {}, {}}}};
    const Volumes others{volume("/mnt/disk", true, false),
                         volume("/mnt/network", {}, {}),
                         volume("/boot", false, true, true),
                         volume("/", false, true),
                         volume("/System/Volumes/Data", false, true),
                         {"/media/gone", std::nullopt}};
    Volumes all = listed;
    all.insert(all.begin() + 2, others.begin(), others.end());
    ScriptedMachine machine;
    const auto found = externalVolumesIn(all, machine.uuidSource);
    ASSERT_EQ(found.size(), listed.size());
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_EQ(found[i].url, listed[i].path()) << "in the machine's order";
    EXPECT_EQ(found[0].name, "image") << "the path's last part where it has no name";
    EXPECT_EQ(found[0].usedGB(), 23);
    EXPECT_EQ(found[4].name, "Named");
    EXPECT_EQ(found[4].usedGB(), 0) << "more available than there is";
    EXPECT_FALSE(found[0].id == externalVolumesIn(all, machine.uuidSource)[0].id) << "new at every scan";
}

TEST(StoragePanel, ShowsTheBootVolumeOrAllOrNone) {
    SystemSnapshot now{};
    now.usedDiskGB = 245.1;
    now.totalDiskGB = 494.4;
    now.diskReadMBps = 12.9;
    ShownElement shown({496, 400}, [&] {
        return StorageExpandedView::of(std::make_shared<const SystemSnapshot>(now), {}).body();
    });
    shown.appear();
    const DiskSnapshot boot{.id = {}, .name = "Sys\ntem", .isBootVolume = true};
    const DiskSnapshot other{.id = {}, .name = "Other", .usedGB = 1, .totalGB = 2'000};
    for (const auto& [volumes, want] :
         {std::pair{std::vector<DiskSnapshot>{}, Told{"Macintosh HD: 245.10 / 494.40 GB"}},
          {{other, boot, boot}, {"Sys tem: 245.10 / 494.40 GB"}},
          {{other, other}, {"Other: 0.00 / 2.00 TB", "Other: 0.00 / 2.00 TB"}}}) {
        shown.change([&now, &volumes = volumes] { now.volumes = volumes; });
        Told all = shown.told();
        std::erase_if(all, [](const std::string& text) { return text.ends_with(" Space"); });
        EXPECT_EQ(all.at(want.size()), "Disk Read: 12 MB/s");
        all.resize(want.size());
        EXPECT_EQ(all, want);
    }
}

// The list of removable volumes on a machine in virtual time.
class RemovableVolumesTest : public testing::Test {
 protected:
    void attach(Volumes volumes) { machine_.fileManager.removable.always(std::move(volumes)); }
    void mount(Volumes volumes) {
        attach(std::move(volumes));
        machine_.workspace.tellMounted();
        panel_->settle();
    }
    void press(const std::string& name) { panel_->perform(panel_->node(name, Role::button), "press"); }
    // As the popover is closed and opened.
    void setVisible(bool isVisible) {
        isUIVisible_.set(isVisible);
        if (!isVisible) return view_->disappear();
        panel_->appear();
    }
    // The volumes, each with "-" where it can be ejected and "…" where it is being ejected.
    std::string list() {
        std::string all;
        for (const AccessibleNode& node : panel_->nodes()) {
            if (node.role == Role::meter) all += node.name;
            if (node.role == Role::button) all += node.name == "Eject All" ? "All " : "- ";
            if (node.role == Role::progress) all += "… ";
        }
        return all;
    }

    ScriptedMachine machine_;
    Published<bool> isUIVisible_{true};
    std::optional<HostedView> view_{std::in_place,
                                    [this] {
                                        return StorageDetailListView{machine_.fileManager, machine_.workspace,
                                                                     machine_.dispatch, machine_.uuidSource,
                                                                     isUIVisible_}
                                            .body()
                                            .frame({.width = 472});
                                    },
                                    machine_.platform()};
    std::optional<ShownPanel> panel_{std::in_place, machine_, *view_};
};

TEST_F(RemovableVolumesTest, FollowsWhatComesAndGoes) {
    machine_.fileManager.removable.always(std::nullopt);
    panel_->appear();
    EXPECT_EQ(panel_->told(), Told{"No removable volumes"});
    mount({volume("/m/A", false, {}, {}, 500, 2'048)});
    EXPECT_EQ(panel_->told(), (Told{"A: 500.00 GB available of 2.00 TB", "Eject A"})) << "no All";
    mount({volume("/m/A"), volume("/m/B", false, {}, {}, 0, 0)});
    EXPECT_EQ(panel_->told(),
              (Told{"Eject All", "A: 41.00 GB available of 64.00 GB", "Eject A", "B", "Eject B"}))
        << "without a size only its name";
    attach({});
    machine_.workspace.tellUnmounted();
    panel_->advance(499ms);
    EXPECT_EQ(list(), "All A- - ");
    panel_->advance(1ms);
    EXPECT_EQ(panel_->told(), Told{"No removable volumes"});
}

TEST_F(RemovableVolumesTest, NoNameIsWiderOrHigherThanItsRow) {
    const Told names{"A", std::string(255, 'W'), "a b" + std::string(250, '\n') + "c"};
    attach({volume("/m/" + names[0]), volume("/m/" + names[1]), volume("/m/" + names[2])});
    panel_->appear();
    const double height = panel_->node("A", Role::meter).frame.size.height;
    EXPECT_GT(height, 20) << "name, sizes and bar";
    for (const std::string& name : names) {
        const Rect told = panel_->node(shownVolumeName(name), Role::meter).frame;
        const Rect button = panel_->node("Eject " + shownVolumeName(name), Role::button).frame;
        EXPECT_EQ(told.size.height, height) << name;
        EXPECT_LE(told.maxX(), button.minX()) << name;
        EXPECT_LE(button.maxX(), 472) << name;
    }
}

TEST_F(RemovableVolumesTest, EjectsAllSideBySideAndKeepsWhatFails) {
    machine_.workspace.ejectionTime = 30s;
    machine_.workspace.ejectionErrors["/m/B"] = "busy";
    attach({volume("/m/A"), volume("/m/B"), volume("/m/C")});
    panel_->appear();
    press("Eject B");
    EXPECT_EQ(list(), "All A- B… C- ");
    press("Eject All");
    EXPECT_EQ(list(), "All A… B… C… ");
    EXPECT_EQ(machine_.workspace.ejected, (Told{"/m/B", "/m/A", "/m/B", "/m/C"}));
    panel_->advance(30s);
    EXPECT_EQ(list(), "B- ") << "before the machine tells that they are gone";
    machine_.workspace.ejectionErrors.clear();
    press("Eject B");
    panel_->advance(30s);
    EXPECT_EQ(panel_->told(), Told{"No removable volumes"});
}

TEST_F(RemovableVolumesTest, AnEjectionOutlastsAClosedPopoverAndARescan) {
    machine_.workspace.ejectionTime = 30s;
    attach({volume("/m/A"), volume("/m/B")});
    panel_->appear();
    press("Eject B");
    const std::string key = panel_->node("B", Role::meter).key;
    panel_->advance(10s);
    EXPECT_EQ(view_->frameRate(), 30) << "the spinner goes round";
    setVisible(false);
    EXPECT_EQ(machine_.workspace.listeners(), 0U) << "nobody looks";
    attach({volume("/m/new"), volume("/m/A"), volume("/m/B")});
    panel_->advance(10s);
    setVisible(true);
    EXPECT_EQ(machine_.workspace.listeners(), 2U);
    EXPECT_EQ(list(), "All new- A- B… ");
    EXPECT_EQ(panel_->node("B", Role::meter).key, key) << "the same bar and spinner";
    machine_.workspace.tellMounted();
    panel_->advance(9s);
    EXPECT_EQ(list(), "All new- A- B… ");
    panel_->advance(1s);
    EXPECT_EQ(list(), "All new- A- ");
    setVisible(false);
    setVisible(true);
    EXPECT_EQ(list(), "All new- A- B- ") << "still there, by a scan that began after it";
}

// Scans may overtake each other, and so may an ejection: the later one is right.
TEST_F(RemovableVolumesTest, WhatBeganEarlierNeverReplacesWhatIsLater) {
    panel_->appear();
    const Volumes late{volume("/m/A"), volume("/m/C")};
    machine_.fileManager.removable.from([&, isFirst = true]() mutable {
        if (!std::exchange(isFirst, false)) return std::optional(late);
        machine_.workspace.tellMounted();  // and its answer comes before this one
        machine_.settle();
        return std::optional(Volumes{volume("/m/A"), volume("/m/B")});
    });
    machine_.workspace.tellMounted();
    panel_->settle();
    EXPECT_EQ(list(), "All A- C- ");
    machine_.workspace.ejectionTime = 1s;
    press("Eject C");
    machine_.fileManager.removable.from([&] {
        machine_.advance(1s);  // the ejection ends while this is being read
        return std::optional(late);
    });
    machine_.workspace.tellMounted();
    panel_->settle();
    EXPECT_EQ(list(), "A- ");
}

TEST_F(RemovableVolumesTest, WhatComesAfterItsEndIsNobodys) {
    machine_.workspace.ejectionTime = 30s;
    attach({volume("/m/A")});
    panel_->appear();
    press("Eject A");
    machine_.workspace.tellUnmounted();
    machine_.dispatch.backgroundLoopQueue().hold();
    machine_.workspace.tellMounted();
    panel_.reset();
    view_.reset();
    EXPECT_EQ(machine_.workspace.listeners(), 0U);
    machine_.dispatch.backgroundLoopQueue().letGo();
    machine_.advance(1min);
    EXPECT_EQ(machine_.fileManager.removable.asked(), 3U) << "those that had been asked for";
}

// What does not fit scrolls, and a list that is on its way out listens no longer.
TEST(DashboardPanels, AreNeverHigherThanTheScreen) {
    ScriptedMachine machine;
    Volumes many;
    for (int i = 0; i < 200; ++i)
        many.push_back(volume("/media/" + std::to_string(i)));
    machine.fileManager.removable.always(many);
    machine.fileManager.volumes.always(Volumes{volume("/", true, {}, true)});
    const PreferencesStore preferences(machine.userDefaults);
    const auto sampler = PerformanceSampler::create(machine.platform(), preferences);
    const SmartPodManager smartPodManager;
    const CPUHardwareInfo hardware(machine.sysctl);
    MenuRootView view(machine.platform(), preferences, sampler, smartPodManager,
                      [&]() -> const CPUHardwareInfo& { return hardware; }, {});
    ShownPanel panel(machine, view.content());
    sampler->start();
    sampler->setUIVisible(true);
    panel.appear();
    panel.perform(panel.node("Disk", Role::button), "press");
    panel.advance(1s);
    EXPECT_NE(panel.node("Eject All").key, "");
    EXPECT_NE(panel.node("", Role::scrollArea).key, "");
    EXPECT_EQ(panel.size().height, 2'000);
    EXPECT_EQ(machine.workspace.listeners(), 2U);
    panel.perform(panel.node("Disk", Role::button), "press");
    sampler->setUIVisible(false);
    EXPECT_EQ(machine.workspace.listeners(), 0U);
}

}  // namespace
}  // namespace norvane
