#include "platform/linux/NvidiaManagement.h"

#include <algorithm>
#include <utility>

namespace norvane {

namespace {

// The library while it is open.
class Session {
 public:
    explicit Session(const NvidiaFunctions& functions)
        : functions_(functions), isOpen_(functions.nvmlInit_v2() == 0) {}
    ~Session() {
        if (isOpen_) functions_.nvmlShutdown();
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    std::optional<unsigned> percent(const std::string& slot) const {
        NvidiaFunctions::Device device = nullptr;
        NvidiaFunctions::Utilization utilization;
        if (!isOpen_ || functions_.nvmlDeviceGetHandleByPciBusId_v2(slot.c_str(), &device) != 0 ||
            functions_.nvmlDeviceGetUtilizationRates(device, &utilization) != 0 || utilization.gpu > 100) {
            return std::nullopt;
        }
        return utilization.gpu;
    }

 private:
    const NvidiaFunctions& functions_;
    bool isOpen_;
};

}  // namespace

NvidiaManagement::NvidiaManagement(Load load, std::function<MonotonicInstant()> now)
    : load_(std::move(load)), now_(std::move(now)) {}

NvidiaManagement::Percents NvidiaManagement::read(const std::vector<std::string>& slots) {
    std::erase_if(idling_, [&slots](const auto& known) {
        return std::find(slots.begin(), slots.end(), known.first) == slots.end();
    });
    Percents percents;
    std::vector<std::string> due;
    const MonotonicInstant now = now_();
    for (const std::string& slot : slots) {
        if (isPaused(slot, now)) {
            percents[slot] = 0;
        } else {
            due.push_back(slot);
        }
    }
    if (due.empty()) return percents;
    const NvidiaFunctions* const library = functions(now);
    if (library == nullptr) return percents;

    const Session session(*library);
    for (const std::string& slot : due) {
        const auto percent = session.percent(slot);
        keepInMind(slot, percent, now);
        if (percent) percents[slot] = *percent;
    }
    return percents;
}

bool NvidiaManagement::isPaused(const std::string& slot, MonotonicInstant now) const {
    const auto known = idling_.find(slot);
    return known != idling_.end() && known->second.zeroes >= kZeroesInARow && now < known->second.pauseEnds;
}

void NvidiaManagement::keepInMind(const std::string& slot, std::optional<unsigned> percent,
                                  MonotonicInstant now) {
    Idling& idling = idling_[slot];
    idling.zeroes = percent == 0U ? std::min(idling.zeroes + 1, kZeroesInARow) : 0;
    idling.pauseEnds = now + kPause;
}

const NvidiaFunctions* NvidiaManagement::functions(MonotonicInstant now) {
    if (!functions_ && load_ && (!missedAt_ || now - *missedAt_ >= kLookAgain)) {
        functions_ = load_();
        missedAt_ = now;
    }
    return functions_ ? &*functions_ : nullptr;
}

}  // namespace norvane
