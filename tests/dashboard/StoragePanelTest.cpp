#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "dashboard/CapacityColor.h"
#include "dashboard/ExternalVolume.h"
#include "dashboard/MenuRootView.h"
#include "dashboard/ShownVolumeName.h"
#include "dashboard/StorageDetailListView.h"
#include "dashboard/StorageExpandedView.h"
#include "dashboard/StorageVolumeRow.h"
#include "insight/HealthySnapshot.h"
#include "ShownPanel.h"
#include "views/HostedView.h"

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

// Names and values of what is told, in order; what is busy ends in dots.
Told told(ShownPanel& panel) {
    Told all;
    for (const AccessibleNode& node : panel.nodes()) {
        if (node.name.empty()) continue;
        all.push_back(node.name + (node.value.empty() ? "" : ": " + node.value) +
                      (node.role == Role::progress ? "…" : ""));
    }
    return all;
}

TEST(ExternalVolumes, AreThoseThatTheUserMayTakeAway) {
    struct Case {
        VolumeURL url;
        bool isListed;
    };
    const Case cases[] = {{volume("/media/image", false), true},
                          {volume("/media/card", true, true), true},
                          {volume("/media/both", false, true), true},
                          {volume("/media/unknown", {}, true), true},
                          {volume("/mnt/disk", true, false), false},
                          {volume("/mnt/network", {}, {}), false},
                          {volume("/mnt/fixed", true, {}), false},
                          {volume("/boot", false, true, true), false},
                          {volume("/", false, true), false},
                          {volume("/System/Volumes/Data", false, true), false},
                          {VolumeURL("/media/gone", std::nullopt), false},
                          {volume("/media/last", false, false, false), true}};
    Volumes all;
    Told wanted;
    for (const Case& c : cases) {
        EXPECT_EQ(isRemovable(c.url), c.isListed) << c.url.path();
        all.push_back(c.url);
        if (c.isListed) wanted.push_back(c.url.path());
    }
    ScriptedMachine machine;
    const auto listed = externalVolumesIn(all, machine.uuidSource);
    Told urls;
    for (const ExternalVolume& external : listed)
        urls.push_back(external.url);
    EXPECT_EQ(urls, wanted) << "in the machine's order";
    EXPECT_EQ(listed[0].name, "image") << "the path's last part where it has no name";
    EXPECT_EQ(listed[0].usedGB(), 23);
    EXPECT_FALSE(listed[0].id == externalVolumesIn(all, machine.uuidSource)[0].id) << "new at every scan";
    const auto empty =
        externalVolumesIn({{"/x", VolumeResourceValues{"Named", {}, 5, false, {}, {}}}}, machine.uuidSource);
    EXPECT_EQ(empty[0].name, "Named");
    EXPECT_EQ(empty[0].totalGB, 0);
    EXPECT_EQ(empty[0].usedGB(), 0) << "more available than there is";
}

TEST(StorageFormats, TerabytesAreOtherOnesForDisksAndForVolumes) {
    EXPECT_EQ(formatVolumeSize(1023.99), "1023.99 GB");
    EXPECT_EQ(formatVolumeSize(1024), "1.00 TB");
    EXPECT_EQ(formatUsedOverTotal(999, 999.99), "999.00 / 999.99 GB");
    EXPECT_EQ(formatUsedOverTotal(250, 1000), "0.25 / 1.00 TB");
}

TEST(StorageColors, ABootVolumesLastGigabytesComeBeforeItsShare) {
    struct Case {
        bool isBoot;
        double used, total, available;
        Ink color;
    };
    for (const Case& c : {Case{true, 492, 500, 8, Ink::red},
                          {true, 1'975, 2'000, 25, Ink::orange},
                          {true, 950, 1'000, 50, Ink::red},
                          {false, 0.9, 1.0, 0.1, Ink::orange},
                          {false, 0.5, 0.6, 0.1, Ink::green}})
        EXPECT_EQ(diskColor({.id = {},
                             .name = {},
                             .usedGB = c.used,
                             .totalGB = c.total,
                             .isBootVolume = c.isBoot,
                             .availableForImportantUsage = c.available}),
                  c.color)
            << c.used << " of " << c.total;
}

TEST(ShownVolumeName, IsOneHarmlessLine) {
    struct Case {
        const char* name;
        const char* shown;
    };
    for (const Case& c : {Case{"", ""},
                          {"<b>A & B</b> %s \\n", "<b>A & B</b> %s \\n"},
                          {"a\nb\tc\rd", "a b c d"},
                          {"a\xC2\x85"
                           "b\xE2\x80\xA8"
                           "c\xE2\x80\xA9"
                           "d",
                           "a b c d"},
                          {"a\x1B[31m\x7F\xC2\x9B", "a\uFFFD[31m\uFFFD\uFFFD"},
                          {"\u202Egpj.exe\u2069\u200F\u061C", "gpj.exe"},
                          {"a\xFF\xC3", "a\uFFFD\uFFFD"},
                          {"a\u200B\u2060\uFEFF\u00ADb", "ab"},
                          {"a\u0301\u0302\u0303\u0304\u0305\u0306b", "a\u0301\u0302\u0303\u0304b"},
                          {"עברית ü 💾", "עברית ü 💾"}})
        EXPECT_EQ(shownVolumeName(c.name), c.shown) << c.name;
    EXPECT_EQ(shownVolumeName(ExternalVolume{.id = {}, .url = "/media/ada/ST\nICK", .name = " \u202E\u200B"}),
              "ST ICK");
}

TEST(StoragePanel, ShowsTheBootVolumeOrAllOrNone) {
    SystemSnapshot now = healthySnapshot();
    now.usedDiskGB = 245.1;
    now.totalDiskGB = 494.4;
    now.diskReadMBps = 12.9;
    now.diskWriteMBps = 0.9;
    ScriptedMachine machine;
    HostedView view(
        [&] {
            const auto snapshot = std::make_shared<const SystemSnapshot>(now);
            return StorageExpandedView::of(snapshot, InsightVerbosity::detailed).body().frame({.width = 496});
        },
        machine.platform());
    ShownPanel panel(machine, view);
    const auto check = [&](std::vector<DiskSnapshot> volumes, Told rows, const std::string& sentence) {
        view.change([&] { now.volumes = std::move(volumes); });
        for (int tick = 0; tick < 3; ++tick) {
            view.change([&] { now.timestamp += 1s; });
            panel.settle();
        }
        Told all = told(panel);
        std::erase_if(all, [](const std::string& text) { return text.ends_with(" Space"); });
        rows.insert(rows.end(), {"Disk Read: 12 MB/s", "Disk Write: 0 MB/s", sentence});
        if (all.size() > rows.size()) all.resize(rows.size());
        EXPECT_EQ(all, rows);
    };
    panel.appear();
    const std::string none = "Internal storage information is unavailable.";
    const DiskSnapshot boot{
        .id = {}, .name = "Sys\ntem", .isBootVolume = true, .availableForImportantUsage = 249};
    const DiskSnapshot other{.id = {}, .name = "Other", .usedGB = 1, .totalGB = 2'000};
    check({}, {"Macintosh HD: 245.10 / 494.40 GB"}, none);
    check({other, boot, boot}, {"Sys tem: 245.10 / 494.40 GB"}, "Storage is healthy.");
    check({other, other}, {"Other: 0.00 / 2.00 TB", "Other: 0.00 / 2.00 TB"}, none);
    now.totalDiskGB = 1;
    check({}, {"Macintosh HD: 245.10 / 1.00 GB"}, none);
}

// The list of removable volumes on a machine in virtual time.
class RemovableVolumesTest : public testing::Test {
 protected:
    void attach(Volumes volumes) { machine_.fileManager.removable.always(std::move(volumes)); }
    void pass(std::chrono::nanoseconds time) {
        machine_.advance(time);
        panel_->settle();
    }
    void press(const std::string& name) { panel_->perform(panel_->node(name, Role::button), "press"); }
    // As the popover is closed and opened.
    void setVisible(bool isVisible) {
        isUIVisible_.set(isVisible);
        if (!isVisible) return view_->disappear();
        panel_->appear();
    }
    void close() {
        panel_.reset();
        view_.reset();
    }
    // The volumes, each with "-" where it can be ejected and "…" where it is being ejected.
    std::string list() {
        std::string all;
        for (const AccessibleNode& node : panel_->nodes()) {
            if (node.name == "Eject All") all += "All ";
            if (node.role == Role::meter) all += node.name;
            if (node.role == Role::button && node.name != "Eject All") all += "- ";
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
    EXPECT_EQ(told(*panel_), Told{"No removable volumes"});
    attach({volume("/m/A", false, {}, {}, 500, 2'048)});
    machine_.workspace.tellMounted();
    panel_->settle();
    EXPECT_EQ(told(*panel_), (Told{"A: 500.00 GB available of 2.00 TB", "Eject A"})) << "at once, and no All";
    attach({volume("/m/A"), volume("/m/B", false, {}, {}, 0, 0)});
    machine_.workspace.tellMounted();
    panel_->settle();
    EXPECT_EQ(told(*panel_),
              (Told{"Eject All", "A: 41.00 GB available of 64.00 GB", "Eject A", "B", "Eject B"}))
        << "without a size only its name";
    attach({});
    machine_.workspace.tellUnmounted();
    pass(499ms);
    EXPECT_EQ(list(), "All A- - ");
    pass(1ms);
    EXPECT_EQ(told(*panel_), Told{"No removable volumes"});
}

TEST_F(RemovableVolumesTest, NoNameIsWiderOrHigherThanItsRow) {
    panel_->appear();
    double height = 0;
    for (const std::string& name :
         {std::string("A"), std::string(255, 'W'), "a b" + std::string(250, '\n') + "c"}) {
        attach({volume("/m/" + name)});
        machine_.workspace.tellMounted();
        panel_->settle();
        const AccessibleNode told = panel_->node(shownVolumeName(name), Role::meter);
        const AccessibleNode button = panel_->node("Eject " + shownVolumeName(name), Role::button);
        if (height == 0) height = told.frame.size.height;
        EXPECT_EQ(told.frame.size.height, height) << name;
        EXPECT_GT(height, 20) << "name, sizes and bar";
        EXPECT_LE(told.frame.maxX(), button.frame.minX()) << name;
        EXPECT_LE(button.frame.maxX(), 472) << name;
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
    pass(30s);
    EXPECT_EQ(list(), "B- ") << "before the machine tells that they are gone";
    machine_.workspace.ejectionErrors.clear();
    press("Eject B");
    pass(30s);
    EXPECT_EQ(told(*panel_), Told{"No removable volumes"});
}

TEST_F(RemovableVolumesTest, AnEjectionOutlastsAClosedPopoverAndARescan) {
    machine_.workspace.ejectionTime = 30s;
    attach({volume("/m/A"), volume("/m/B")});
    panel_->appear();
    press("Eject B");
    const std::string key = panel_->node("B", Role::meter).key;
    pass(10s);
    setVisible(false);
    EXPECT_EQ(machine_.workspace.listeners(), 0U) << "nobody looks";
    attach({volume("/m/new"), volume("/m/A"), volume("/m/B")});
    pass(10s);
    setVisible(true);
    EXPECT_EQ(machine_.workspace.listeners(), 2U);
    EXPECT_EQ(list(), "All new- A- B… ");
    EXPECT_EQ(panel_->node("B", Role::meter).key, key) << "the same bar and spinner";
    machine_.workspace.tellMounted();
    pass(9s);
    EXPECT_EQ(list(), "All new- A- B… ");
    pass(1s);
    EXPECT_EQ(list(), "All new- A- ");
    setVisible(false);
    setVisible(true);
    EXPECT_EQ(list(), "All new- A- B- ") << "still there, by a scan that began after it";
}

// Scans may overtake each other, and so may an ejection: the later one is right.
TEST_F(RemovableVolumesTest, WhatBeganEarlierNeverReplacesWhatIsLater) {
    panel_->appear();
    const Volumes early{volume("/m/A"), volume("/m/B")};
    const Volumes late{volume("/m/A"), volume("/m/C")};
    machine_.fileManager.removable.from([&, isFirst = true]() mutable {
        if (!std::exchange(isFirst, false)) return std::optional(late);
        machine_.workspace.tellMounted();  // and its answer comes before this one
        machine_.settle();
        return std::optional(early);
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
    close();
    EXPECT_EQ(machine_.workspace.listeners(), 0U);
    machine_.dispatch.backgroundLoopQueue().letGo();
    machine_.advance(1min);
    EXPECT_EQ(machine_.fileManager.removable.asked(), 3U) << "those that had been asked for";
}

TEST(DashboardPanels, AreThereOnlyWithWhatTheyShow) {
    ScriptedMachine machine;
    machine.userDefaults.setObject("isSmartAutoExpandEnabled", false);
    Volumes many;
    for (int i = 0; i < 200; ++i)
        many.push_back(volume("/media/" + std::to_string(i)));
    machine.fileManager.removable.always(many);
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
    const auto press = [&](const char* pod) {
        machine.advance(1s);
        panel.settle();
        panel.perform(panel.node(pod, Role::button), "press");
        machine.advance(1s);
        panel.settle();
    };
    const auto shows = [&](const char* name) {
        const Told all = told(panel);
        return std::any_of(all.begin(), all.end(), [&](const auto& one) { return one.starts_with(name); });
    };
    press("Impact");
    EXPECT_FALSE(shows("Battery")) << "no battery";
    press("Disk");
    EXPECT_TRUE(shows("Macintosh HD"));
    EXPECT_FALSE(shows("Eject")) << "no list without volumes";

    machine.fileManager.volumes.always(Volumes{volume("/", true, {}, true)});
    machine.registry.services(RegistryService::AppleSmartBattery)
        .always({{RegistryEntry({{"CurrentCapacity", 81}, {"MaxCapacity", 100}})}});
    machine.advance(31s);
    panel.settle();
    EXPECT_TRUE(shows("Eject All"));
    EXPECT_NE(panel.node("", Role::scrollArea).key, "") << "they scroll";
    EXPECT_EQ(panel.size().height, 2'000) << "no higher than the screen";
    EXPECT_EQ(machine.workspace.listeners(), 2U);
    panel.perform(panel.node("Disk", Role::button), "press");
    sampler->setUIVisible(false);
    EXPECT_EQ(machine.workspace.listeners(), 0U) << "a list that is on its way out listens no longer";
    sampler->setUIVisible(true);

    // As many disks as do not fit, and none that the machine was started from.
    machine.fileManager.volumes.always(Volumes(many.begin(), many.begin() + 60));
    machine.advance(31s);
    panel.settle();
    EXPECT_TRUE(shows("59: "));
    EXPECT_LE(panel.node("Quit", Role::button).frame.maxY(), 2'000);
    machine.fileManager.volumes.always(Volumes{volume("/", true, {}, true)});
    press("Impact");
    EXPECT_TRUE(shows("Battery Level: 81%"));
    EXPECT_TRUE(shows("Battery Health: 100.0%"));
}

}  // namespace
}  // namespace norvane
