#include "platform/linux/DrmClients.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/linux/DrmFdinfo.h"
#include "platform/linux/KernelText.h"

namespace norvane {

namespace {

bool isProcess(std::string_view name) {
    return numberAfter("", name, std::numeric_limits<unsigned>::max()).has_value();
}

}  // namespace

DrmClients::DrmClients(RootFolder root, std::uint32_t userId, std::function<MonotonicInstant()> now)
    : root_(std::move(root)), userId_(userId), now_(std::move(now)) {}

DrmClients::Answer DrmClients::read(const Nodes& nodes) {
    // All are found before the first is read, so that one moment goes for all counters however long the
    // search takes.
    const std::vector<Descriptor> descriptors = findDescriptors(nodes);
    Answer answer{now_(), {}};
    for (const Descriptor& descriptor : descriptors) {
        const auto text = root_.read(descriptor.fdinfo);
        auto info = text ? parseDrmFdinfo(*text) : std::nullopt;
        // By now, the number may stand for another file.
        if (!info || (!info->pdev.empty() && info->pdev != descriptor.device)) continue;
        answer.clients[descriptor.device].try_emplace(std::move(info->clientId), std::move(info->engines));
    }
    return answer;
}

std::vector<DrmClients::Descriptor> DrmClients::findDescriptors(const Nodes& nodes) {
    std::vector<Descriptor> found;
    const MonotonicInstant now = now_();
    if (lookedAtAll_ && now - *lookedAtAll_ < kLookAtAll) {
        for (const std::string& process : processes_)
            findDescriptorsOf(process, nodes, found);
        return found;
    }
    lookedAtAll_ = now;
    processes_.clear();
    for (std::string& name : root_.names("/proc")) {
        if (isProcess(name) && findDescriptorsOf(name, nodes, found)) processes_.push_back(std::move(name));
    }
    return found;
}

bool DrmClients::findDescriptorsOf(const std::string& process, const Nodes& nodes,
                                   std::vector<Descriptor>& found) const {
    const std::string folder = "/proc/" + process;
    // Also of a process that was looked at before: its number may be somebody else's by now.
    if (root_.owner(folder) != userId_) return false;
    const std::string descriptors = folder + "/fd/";
    const std::string descriptions = folder + "/fdinfo/";
    std::vector<std::string> numbers = root_.names(descriptors);
    numbers.resize(std::min(numbers.size(), kMostDescriptors));
    bool any = false;
    for (const std::string& number : numbers) {
        constexpr std::string_view kFolder = "/dev/dri/";
        const auto target = root_.readLink(descriptors + number);
        if (!target || !target->starts_with(kFolder)) continue;
        any = true;
        const auto node = nodes.find(target->substr(kFolder.size()));
        if (node != nodes.end()) found.push_back({descriptions + number, node->second});
    }
    return any;
}

}  // namespace norvane
