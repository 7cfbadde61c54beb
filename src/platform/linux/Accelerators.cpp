#include "platform/linux/Accelerators.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <set>
#include <utility>

#include "platform/linux/KernelText.h"
#include "platform/linux/PathParts.h"

namespace norvane {

namespace {

constexpr const char* kClass = "/sys/class/drm/";

// The last part of where a link leads; empty where there is none.
std::string linkedName(const RootFolder& root, const std::string& link) {
    const auto target = root.readLink(link);
    return target ? namePart(*target) : std::string();
}

std::optional<std::uint64_t> numberInFile(const RootFolder& root, const std::string& path) {
    const auto text = root.read(path);
    return text ? parseNumber(*text) : std::nullopt;
}

// "card0" and "renderD128", but not the connector "card0-DP-1".
bool isNode(std::string_view name) {
    return numberAfter("card", name) || numberAfter("renderD", name);
}

RegistryEntry service(std::optional<double> percent) {
    if (!percent) return RegistryEntry(PropertyDictionary{});
    return RegistryEntry(
        {{"PerformanceStatistics", PropertyDictionary{{"Device Utilization %", std::llround(*percent)}}}});
}

}  // namespace

Accelerators::Accelerators(RootFolder root, const SystemCalls& calls)
    : root_(std::move(root)),
      now_(calls.now),
      drmClients_(root_, calls.userId, calls.now),
      nvidia_(calls.loadNvidiaFunctions, calls.now) {}

bool Accelerators::isDue(const Answer& newest, MonotonicInstant now) {
    return newest.hasSources || !newest.readAt || now - *newest.readAt >= kLookAgain;
}

Accelerators::Answer Accelerators::read() {
    Answer answer;
    answer.readAt = now_();
    const std::vector<std::string> names = root_.names(kClass);
    const std::vector<Card> cards = look(names);
    std::erase_if(histories_, [&cards](const auto& history) {
        return std::none_of(cards.begin(), cards.end(),
                            [&](const Card& card) { return card.device == history.first; });
    });
    Common common = readCommon(names, cards);
    for (const Card& card : cards) {
        if (card.source != Source::none) answer.hasSources = true;
        answer.services.push_back(service(percent(card, common)));
    }
    return answer;
}

std::vector<Accelerators::Card> Accelerators::look(const std::vector<std::string>& names) const {
    std::vector<Card> cards;
    std::set<std::string> devices;
    for (const std::string& name : names) {
        if (!numberAfter("card", name)) continue;
        Card card{kClass + name + '/', {}, Source::asleep};
        if (isAwake(card.folder)) {
            card.device = linkedName(root_, card.folder + "device");
            // A device may show itself as several cards.
            if (!card.device.empty() && !devices.insert(card.device).second) continue;
            card.source = sourceOf(linkedName(root_, card.folder + "device/driver"));
        }
        cards.push_back(std::move(card));
    }
    return cards;
}

// The kernel's "Runtime Power Management Framework": nothing but "active" says that looking closer does not
// wake the device up, unless it never sleeps.
bool Accelerators::isAwake(const std::string& folder) const {
    const std::string path = folder + "device/power/runtime_status";
    const FileDescriptor file = root_.open(path.c_str());
    if (!file) return errno == ENOENT || errno == ENOTDIR;
    std::vector<char> buffer;
    const auto length = root_.readAll(file, path, buffer, 64);
    if (!length) return false;
    const std::string_view status = trimmed({buffer.data(), *length});
    return status == "active" || status == "unsupported";
}

Accelerators::Source Accelerators::sourceOf(std::string_view driver) {
    struct Rule {
        std::string_view driver;
        Source source;
    };
    // The drivers that are missing have nothing to tell, those of virtual machines above all.
    static constexpr std::array kRules{
        Rule{"amdgpu", Source::busyPercent},
        Rule{"i915", Source::rc6Residency},
        Rule{"xe", Source::gtIdleResidency},
        Rule{"nvidia", Source::management},
        Rule{"panfrost", Source::clientsOnly},
        Rule{"panthor", Source::clientsOnly},
        Rule{"v3d", Source::clientsOnly},
        Rule{"etnaviv", Source::clientsOnly},
        Rule{"lima", Source::clientsOnly},
        Rule{"asahi", Source::clientsOnly},
        // The names of msm's parts, one of which has the card, by generation.
        Rule{"msm", Source::clientsOnly},
        Rule{"msm-mdss", Source::clientsOnly},
        Rule{"msm_dpu", Source::clientsOnly},
        Rule{"msm_mdp", Source::clientsOnly},
        Rule{"adreno", Source::clientsOnly},
    };
    const auto* const rule =
        std::find_if(kRules.begin(), kRules.end(), [&](const Rule& known) { return known.driver == driver; });
    return rule == kRules.end() ? Source::none : rule->source;
}

bool Accelerators::hasClients(Source source) {
    return source == Source::rc6Residency || source == Source::gtIdleResidency ||
           source == Source::clientsOnly;
}

Accelerators::Common Accelerators::readCommon(const std::vector<std::string>& names,
                                              const std::vector<Card>& cards) {
    DrmClients::Nodes nodes;
    std::vector<std::string> slots;
    for (const Card& card : cards) {
        if (card.source == Source::management) slots.push_back(card.device);
        if (!hasClients(card.source)) continue;
        for (const std::string& name : names) {
            if (isNode(name) && linkedName(root_, kClass + name + "/device") == card.device) {
                nodes.emplace(name, card.device);
            }
        }
    }
    Common common;
    if (!nodes.empty()) common.clients = drmClients_.read(nodes);
    common.management = nvidia_.read(slots);
    return common;
}

std::optional<double> Accelerators::percent(const Card& card, Common& common) {
    switch (card.source) {
        case Source::none:
        case Source::asleep:
            return std::nullopt;
        case Source::busyPercent:
            return busyPercent(card);
        case Source::rc6Residency:
        case Source::gtIdleResidency:
        case Source::clientsOnly:
            return clientsPercent(card, common.clients);
        case Source::management: {
            const auto found = common.management.find(card.device);
            if (found == common.management.end()) return std::nullopt;
            return found->second;
        }
    }
    return std::nullopt;
}

// Some integrated devices always say 0, 99 or 100: that is how the kernel sees them.
std::optional<double> Accelerators::busyPercent(const Card& card) const {
    const auto percent = numberInFile(root_, card.folder + "device/gpu_busy_percent");
    if (!percent || *percent > 100) return std::nullopt;
    return static_cast<double>(*percent);
}

std::optional<double> Accelerators::clientsPercent(const Card& card, DrmClients::Answer& clients) {
    History& history = histories_[card.device];
    DrmClientEngines ofThis = std::move(clients.clients[card.device]);
    const bool tellsOfClients = std::any_of(ofThis.begin(), ofThis.end(), [](const auto& client) {
        return std::any_of(client.second.begin(), client.second.end(),
                           [](const auto& engine) { return engine.second.isMeasured(); });
    });
    const auto byClients = history.clients.percent(std::move(ofThis), clients.at);
    if (tellsOfClients) {
        history.idle.clear();
        return byClients;
    }
    std::optional<double> busiest;
    for (const std::string& counter : idleCounters(card)) {
        const auto idle = numberInFile(root_, counter);
        const auto percent = idle ? history.idle[counter].busyPercent(*idle, now_()) : std::nullopt;
        if (percent) busiest = std::max(busiest.value_or(0), *percent);
    }
    return busiest;
}

std::vector<std::string> Accelerators::idleCounters(const Card& card) const {
    std::vector<std::string> counters;
    if (card.source == Source::rc6Residency) {
        const std::string counter = card.folder + "gt/gt0/rc6_residency_ms";
        // Kernels that do not tell the parts of a device apart have the other one.
        counters.push_back(root_.open(counter.c_str()) ? counter : card.folder + "power/rc6_residency_ms");
    } else if (card.source == Source::gtIdleResidency) {
        const std::string device = card.folder + "device/";
        for (const std::string& tile : root_.names(device)) {
            if (!numberAfter("tile", tile)) continue;
            const std::string parts = device + tile + '/';
            for (const std::string& gt : root_.names(parts)) {
                if (!numberAfter("gt", gt)) continue;
                counters.push_back(parts);
                counters.back().append(gt).append("/gtidle/idle_residency_ms");
            }
        }
    }
    return counters;
}

}  // namespace norvane
