#include "scenario/ShownThing.h"

#include <algorithm>
#include <memory>

#include "dashboard/PodValue.h"
#include "insight/ImpactPod.h"
#include "insight/SystemStatusText.h"
#include "platform/scripted/ScriptedPopoverWindow.h"
#include "scenario/SettledTree.h"
#include "scenario/ShownJson.h"
#include "scenario/SnapshotFields.h"

namespace norvane {
namespace {

// The tree's leaves and groups as somebody hears them: "CPU 12.00 %".
std::string heard(const AccessibleNode& node) {
    return node.name + (node.name.empty() || node.value.empty() ? "" : " ") + node.value;
}

void hearAll(const AccessibleNode& node, Json& texts) {
    if (!heard(node).empty()) texts.push_back(heard(node));
    for (const AccessibleNode& child : node.children)
        hearAll(child, texts);
}

// The dashboard is the window with the row that quits; others may hang beside it.
bool isDashboard(const AccessibleNode& tree) {
    return std::any_of(tree.children.begin(), tree.children.end(), [](const AccessibleNode& child) {
        return child.role == AccessibleRole::button && child.name == "Quit";
    });
}

// The open dashboard's tree; a node without children where none is open.
AccessibleNode dashboardTree(const Sight& sight) {
    for (ScriptedPopoverWindow* const window : sight.machine.windowServer.windows()) {
        AccessibleNode tree = settledTree(*window, sight.machine.time.monotonic());
        if (isDashboard(tree)) return tree;
    }
    return {};
}

Json dashboard(const Sight& sight) {
    Json texts = Json::array();
    for (const AccessibleNode& child : dashboardTree(sight).children)
        hearAll(child, texts);
    return texts.empty() ? Json() : texts;
}

// The status line is the dashboard's first text after its heading.
Json statusLine(const Sight& sight) {
    bool isBelowHeading = false;
    for (const AccessibleNode& child : dashboardTree(sight).children) {
        if (child.role == AccessibleRole::heading) isBelowHeading = true;
        if (isBelowHeading && child.role == AccessibleRole::text) return child.name;
    }
    return {};
}

// The verdict as it is worked out, before it has been steadied.
Json computedStatus(const Sight& sight) {
    const PerformanceSampler* const sampler = sight.sampler();
    if (sampler == nullptr) return {};
    return std::string(systemStatusText(sampler->snapshot().get().get(), sampler->systemState().get(),
                                        sight.machine.processInfo.isLowPowerModeEnabled()));
}

template <typename Text>
auto explained(Text text) {
    return [text](const Sight& sight) {
        if (sight.explanations == nullptr) return Json();
        const std::string_view said = text(*sight.explanations);
        return said.empty() ? Json() : Json(std::string(said));
    };
}

std::string podText(const PodValue& pod) {
    return pod.value + " " + pod.unit;
}

// The pod that is expanded in the open dashboard.
Json expandedPod(const Sight& sight) {
    const auto* const view =
        sight.app != nullptr ? sight.app->delegate().statusBarController()->menuRootView() : nullptr;
    const auto section = view != nullptr && !sight.machine.windowServer.windows().empty()
                             ? view->expandedSection()
                             : std::nullopt;
    return section ? Json(std::string(rawTextOf(*section))) : Json();
}

// The pod that an opening at this moment would expand.
Json podIfOpened(const Sight& sight) {
    if (sight.app == nullptr) return {};
    const StatusBarController& controller = *sight.app->delegate().statusBarController();
    // Nobody has opened it yet: what is chosen rests on no snapshot.
    if (controller.menuRootView() == nullptr) return std::string(rawTextOf(SnapshotSection::cpu));
    return std::string(rawTextOf(controller.menuRootView()->sectionIfOpened()));
}

// "37% 4.0G"
Json label(const Sight& sight) {
    const ScriptedWindowServer& desktop = sight.machine.windowServer;
    if (desktop.statusItemContent() == nullptr) return {};
    desktop.statusItemPicture();
    std::string text;
    for (const AccessibleNode& column : desktop.statusItemContent()->accessibleTree().children) {
        const std::string& said = column.value.empty() ? column.name : column.value;
        text += (text.empty() || said.empty() ? "" : " ") + said;
    }
    return text;
}

template <typename Publication>
auto published(Publication publication) {
    return [publication](const Sight& sight) {
        const PerformanceSampler* const sampler = sight.sampler();
        return sampler != nullptr ? publication(*sampler) : Json();
    };
}

Json menuBarStats(const PerformanceSampler& sampler) {
    const MenuBarStats stats = sampler.menuBarStats().get();
    return {{"cpu", shownJson(stats.cpu)},
            {"ramUsed", shownJson(stats.ramUsed)},
            {"ramTotal", shownJson(stats.ramTotal)}};
}

// How many points there are, and the newest.
Json cpuHistory(const PerformanceSampler& sampler) {
    const auto history = sampler.cpuHistory().get();
    Json shown{{"points", history->size()}};
    if (history->empty()) return shown;
    shown["performance"] = shownJson(history->back().performance);
    shown["efficiency"] = shownJson(history->back().efficiency);
    shown["total"] = shownJson(history->back().total);
    return shown;
}

std::string told(const NotificationContent& content) {
    return content.title + ": " + content.body;
}

Json notificationsAdded(const Sight& sight) {
    Json list = Json::array();
    for (const NotificationRequest& request : sight.machine.userNotificationCenter.added)
        list.push_back(told(request.content));
    return list;
}

Json notificationsShown(const Sight& sight) {
    Json list = Json::array();
    for (const NotificationContent& content : sight.machine.userNotificationCenter.shown)
        list.push_back(told(content));
    return list;
}

Json output(const Sight& sight) {
    return shownJson(sight.machine.standardOutput.lines);
}

std::vector<ShownThing> allThings() {
    using Kind = ShownThing::Kind;
    using Sampler = PerformanceSampler;
    std::vector<ShownThing> things = {
        {"isRunning", Kind::value, [](const Sight& sight) { return Json(sight.app != nullptr); }},
        {"systemState", Kind::value,
         published([](const Sampler& sampler) { return shownJson(sampler.systemState().get()); })},
        {"isUIVisible", Kind::value,
         published([](const Sampler& sampler) { return shownJson(sampler.isUIVisible().get()); })},
        {"menuBarStats", Kind::value, published(menuBarStats)},
        {"volumes", Kind::value,
         published([](const Sampler& sampler) { return shownJson(*sampler.volumes().get()); })},
        {"cpuHistory", Kind::value, published(cpuHistory)},
        {"label", Kind::value, label},
        {"status", Kind::value, statusLine},
        {"status.computed", Kind::value, computedStatus},
        {"pod.expanded", Kind::value, expandedPod},
        {"pod.ifOpened", Kind::value, podIfOpened},
        {"pod.cpu", Kind::value, published([](const Sampler& sampler) {
             return Json(podText(cpuPodValue(sampler.snapshot().get().get())));
         })},
        {"pod.memory", Kind::value, published([](const Sampler& sampler) {
             return Json(podText(memoryPodValue(sampler.snapshot().get().get())));
         })},
        {"pod.storage", Kind::value, published([](const Sampler& sampler) {
             return Json(podText(storagePodValue(sampler.snapshot().get().get())));
         })},
        {"pod.battery", Kind::value, published([](const Sampler& sampler) {
             return Json(std::string(impactPodValue(sampler.snapshot().get().get())));
         })},
        {"dashboard", Kind::value, dashboard},
        {"notificationsAdded", Kind::log, notificationsAdded},
        {"notificationsShown", Kind::log, notificationsShown},
        {"output", Kind::log, output},
    };
    for (const SnapshotSection section : {SnapshotSection::cpu, SnapshotSection::memory,
                                          SnapshotSection::storage, SnapshotSection::battery}) {
        const std::string name = "insight." + std::string(rawTextOf(section));
        things.push_back({name, Kind::value,
                          explained([section](const Explanations& all) { return all.shown(section); })});
        things.push_back({name + ".live", Kind::value,
                          explained([section](const Explanations& all) { return all.live(section); })});
        for (const auto verbosity : {InsightVerbosity::detailed, InsightVerbosity::concise}) {
            things.push_back({name + "." + std::string(rawTextOf(verbosity)), Kind::value,
                              explained([section, verbosity](const Explanations& all) {
                                  return all.live(section, verbosity);
                              })});
        }
    }
    for (const SnapshotField& field : snapshotFields()) {
        things.push_back({"snapshot." + std::string(field.name), Kind::value,
                          published([shown = field.shown](const Sampler& sampler) {
                              const auto snapshot = sampler.snapshot().get();
                              return snapshot ? shown(*snapshot) : Json();
                          })});
    }
    return things;
}

}  // namespace

const std::vector<ShownThing>& shownThings() {
    static const std::vector<ShownThing> things = allThings();
    return things;
}

std::vector<const ShownThing*> shownThingsNamed(std::string_view name) {
    std::vector<const ShownThing*> named;
    const std::string group = std::string(name) + ".";
    for (const ShownThing& thing : shownThings()) {
        if (thing.name == name) return {&thing};
        if (thing.name.starts_with(group)) named.push_back(&thing);
    }
    return named;
}

}  // namespace norvane
