#include <chrono>

#include "platform/linux/DrmFdinfo.h"
#include "platform/linux/DrmUtilization.h"
#include "platform/linux/KernelText.h"
#include "Property.h"

namespace norvane {
namespace {

bool areSame(const std::optional<DrmFdinfo>& one, const std::optional<DrmFdinfo>& other) {
    if (!one || !other) return one.has_value() == other.has_value();
    return one->clientId == other->clientId && one->pdev == other->pdev && one->engines == other->engines;
}

std::string printed(const DrmFdinfo& info) {
    std::string text =
        "pos:\t0\ndrm-driver:\ti915\ndrm-pdev:\t" + info.pdev + "\ndrm-client-id: " + info.clientId + '\n';
    for (const auto& [name, engine] : info.engines) {
        require(!name.empty() && engine.capacity > 0, "an engine has a name and a capacity");
        // Known, but without a number that can be read.
        if (engine == DrmEngine{}) text += "drm-cycles-" + name + ": ?\n";
        if (engine.busyNanoseconds) {
            text += "drm-engine-" + name + ":\t" + std::to_string(*engine.busyNanoseconds) + " ns\n";
        }
        if (engine.busyCycles)
            text += "drm-cycles-" + name + ": " + std::to_string(*engine.busyCycles) + '\n';
        if (engine.totalCycles) {
            text += "drm-total-cycles-" + name + ": " + std::to_string(*engine.totalCycles) + '\n';
        }
        if (engine.capacity > 1) {
            text += "drm-engine-capacity-" + name + ": " + std::to_string(engine.capacity) + '\n';
        }
    }
    return text;
}

std::optional<DrmFdinfo> checkParser(std::string_view text) {
    auto info = parseDrmFdinfo(text);
    require(areSame(parseDrmFdinfo(amongUnknownLines(text)), info), "unknown lines don't matter");
    if (!info) return info;
    require(hasLine(text, "drm-client-id:"), "there is no client without its line");
    require(!info->clientId.empty() && trimmed(info->clientId) == info->clientId,
            "a client has an identifier");
    require(trimmed(info->pdev) == info->pdev, "a slot has no blanks around it");
    require(areSame(parseDrmFdinfo(printed(*info)), info), "what a client did survives printing");
    return info;
}

}  // namespace

// The two halves of the text are two looks at the clients, whatever the counters did in between.
void check(std::string_view text) {
    checkParser(text);
    const std::size_t middle = std::min(text.find("===\n"), text.size());
    DrmUtilization utilization;
    const auto look = [&](std::string_view half, int second) {
        DrmClientEngines clients;
        if (const auto info = checkParser(half)) clients[info->clientId] = info->engines;
        const auto percent =
            utilization.percent(std::move(clients), MonotonicInstant(std::chrono::seconds(second)));
        require(!percent || (*percent >= 0 && *percent <= 100), "a share is one of the whole");
        return percent;
    };
    require(!look(text.substr(0, middle), 1000), "one look tells nothing");
    look(text.substr(middle), 1003);
    look(text.substr(0, middle), 1003);
    look(text.substr(middle), 999);
}

}  // namespace norvane
