#pragma once

#include <optional>
#include <vector>

#include "platform/HostPort.h"
#include "platform/scripted/ScriptedAnswer.h"
#include "platform/scripted/ScriptedProcessors.h"

namespace norvane {

// A kernel that counts the ticks of scripted processors and has a quarter of 16 GiB in use, until told
// otherwise: each answer can be scripted by itself.
class ScriptedHostPort final : public HostPort {
 public:
    explicit ScriptedHostPort(ScriptedTime& time) : processors(time) {
        statistics.from([this] { return std::optional(processors.total()); });
        processorInfo.from([this] { return std::optional(processors.each()); });
    }

    std::optional<HostCPULoadInfo> host_statistics(TickToken tick) override {
        tokens.push_back(tick);
        return statistics.ask();
    }
    std::optional<ProcessorInfo> host_processor_info(TickToken) override { return processorInfo.ask(); }
    std::optional<VMStatistics64> host_statistics64(TickToken, SwapCounters swapCounters) override {
        auto answer = statistics64.ask();
        if (swapCounters == SwapCounters::read) {
            ++swapCountersAsked;
        } else if (answer) {
            answer->swapins = answer->swapouts = 0;  // as on a real machine, where reading them costs extra
        }
        return answer;
    }
    std::uint64_t host_page_size() override { return pageSize.ask(); }

    ScriptedProcessors processors;
    ScriptedAnswer<std::optional<HostCPULoadInfo>> statistics{std::nullopt};
    ScriptedAnswer<std::optional<ProcessorInfo>> processorInfo{std::nullopt};
    ScriptedAnswer<std::optional<VMStatistics64>> statistics64{
        VMStatistics64{.wire_count = 262'144, .active_count = 786'432, .external_page_count = 524'288}};
    ScriptedAnswer<std::uint64_t> pageSize{4096};
    // How often the swap counters were wanted.
    std::uint64_t swapCountersAsked = 0;
    // The token of every tick that asked, in order.
    std::vector<TickToken> tokens;
};

}  // namespace norvane
