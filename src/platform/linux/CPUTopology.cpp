#include "platform/linux/CPUTopology.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <utility>

#include "platform/linux/CPUList.h"
#include "platform/linux/KernelText.h"
#include "platform/linux/RootFolder.h"
#include "platform/linux/Saturated.h"

namespace norvane {

namespace {

using Numbers = std::set<unsigned>;

std::string topologyFolderOf(unsigned processor) {
    return "/sys/devices/system/cpu/cpu" + std::to_string(processor);
}

std::optional<std::int64_t> readNumber(const RootFolder& root, const std::string& path) {
    const auto text = root.read(path);
    return text ? parseSignedNumber(*text) : std::nullopt;
}

// The processors of a performance monitoring unit of its own ("Intel hybrid support" in perf's
// documentation).
Numbers processorsOfUnit(const RootFolder& root, const std::string& unit, const Numbers& among) {
    for (const char* folder : {"/sys/devices/", "/sys/bus/event_source/devices/"}) {
        const auto text = root.read(folder + unit + "/cpus");
        const auto list = text ? parseCPUList(*text) : std::nullopt;
        if (!list) continue;
        Numbers found;
        std::set_intersection(list->begin(), list->end(), among.begin(), among.end(),
                              std::inserter(found, found.end()));
        return found;
    }
    return {};
}

Numbers efficientByUnits(const RootFolder& root, const Numbers& processors) {
    if (processorsOfUnit(root, "cpu_core", processors).empty()) return {};
    Numbers efficient = processorsOfUnit(root, "cpu_atom", processors);
    efficient.merge(processorsOfUnit(root, "cpu_lowpower", processors));
    return efficient;
}

// Those whose figure is at most `percent` of the largest; none where a processor has no such figure.
Numbers efficientByFigure(const RootFolder& root, const Numbers& processors, const std::string& file,
                          std::uint64_t percent) {
    std::vector<std::pair<unsigned, std::uint64_t>> figures;
    std::uint64_t largest = 0;
    for (const unsigned processor : processors) {
        const auto figure = readNumber(root, topologyFolderOf(processor) + file);
        if (!figure || *figure <= 0) return {};
        figures.emplace_back(processor, static_cast<std::uint64_t>(*figure));
        largest = std::max(largest, figures.back().second);
    }
    Numbers efficient;
    for (const auto& [processor, figure] : figures) {
        if (saturatedProduct(figure, 100) <= saturatedProduct(largest, percent)) efficient.insert(processor);
    }
    return efficient;
}

// The first source that divides the processors into two kinds decides.
Numbers efficientProcessors(const RootFolder& root, const Numbers& processors) {
    const auto divides = [&](const Numbers& efficient) {
        return !efficient.empty() && efficient.size() < processors.size();
    };
    if (Numbers found = efficientByUnits(root, processors); divides(found)) return found;
    // Keeps the prime core of a phone's chip with its big ones (1024 and 871), and parts the small ones off
    // (446, 530). Newer kernels give all processors of a uniform PC the same capacity.
    if (Numbers found = efficientByFigure(root, processors, "/cpu_capacity", 75); divides(found))
        return found;
    // Favoured cores of one kind differ by a few percent only.
    if (Numbers found = efficientByFigure(root, processors, "/cpufreq/cpuinfo_max_freq", 80);
        divides(found)) {
        return found;
    }
    return {};
}

// Hardware threads that share a core count once. Core numbers repeat between packages and dies, on boards
// with a device tree also between clusters.
std::int64_t countCores(const RootFolder& root, const Numbers& processors) {
    std::set<std::array<std::int64_t, 4>> cores;
    std::int64_t unknown = 0;
    for (const unsigned processor : processors) {
        const std::string folder = topologyFolderOf(processor) + "/topology/";
        const auto core = readNumber(root, folder + "core_id");
        if (!core) {
            ++unknown;
            continue;
        }
        const auto known = [&](const char* file) {
            return std::max<std::int64_t>(readNumber(root, folder + file).value_or(-1), -1);
        };
        cores.insert({known("physical_package_id"), known("die_id"), known("cluster_id"), *core});
    }
    return static_cast<std::int64_t>(cores.size()) + unknown;
}

CPUTopology::Level levelOf(const RootFolder& root, const Numbers& processors) {
    return {countCores(root, processors), static_cast<std::int64_t>(processors.size())};
}

}  // namespace

CPUTopology readCPUTopology(const RootFolder& root, const std::vector<unsigned>& processors) {
    const Numbers all(processors.begin(), processors.end());
    const Numbers efficient = efficientProcessors(root, all);
    Numbers others;
    std::set_difference(all.begin(), all.end(), efficient.begin(), efficient.end(),
                        std::inserter(others, others.end()));

    CPUTopology topology;
    topology.order.assign(efficient.begin(), efficient.end());
    topology.order.insert(topology.order.end(), others.begin(), others.end());
    if (!efficient.empty()) topology.levels = {levelOf(root, others), levelOf(root, efficient)};
    return topology;
}

}  // namespace norvane
