#include "MachineBenchmarks.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "EveryByte.h"
#include "LiveSampler.h"
#include "MadeServer.h"
#include "Measured.h"
#include "platform/linux/DiskStats.h"
#include "platform/linux/FileObserver.h"
#include "platform/linux/MemInfo.h"
#include "platform/linux/MountInfo.h"
#include "platform/linux/PowerSupplyUevent.h"
#include "platform/linux/ProcStat.h"
#include "platform/linux/VmStat.h"
#include "ScanLoop.h"

namespace norvane {
namespace {

// Beside a loop that looks at every byte of the same files.
constexpr double kMostTimesTheScan = 4.0;
// For twice the processors, drives or mounts.
constexpr double kMostForTwice = 2.3;

// As many ticks as lie between two readings of the rarest source.
constexpr int kTicks = 30;
constexpr int kRepetitions = 50;

constexpr const char* kServer = "server";
constexpr const char* kMachines[] = {"uniform-desktop", "hybrid-laptop", kServer};

struct Growth {
    const char* what;
    std::vector<int> sizes;
};
const Growth kProcessors{"processors", {16, 64, 256}};
const Growth kDrives{"drives", {6, 12, 24, 48, 96}};
const Growth kMounts{"mounts", {125, 250, 500, 1000, 2000}};

class ReadsOfTicks final : public FileObserver {
 public:
    void willOpen(std::string_view) override {}
    void willRead(std::string_view path) override {
        if (isListening) ticks.back().emplace_back(path);
    }
    bool isListening = false;
    std::vector<std::vector<std::string>> ticks;
};

// The calls of a machine that is there only as files; its disks answer at once.
SystemCalls callsOfFiles() {
    SystemCalls calls = SystemCalls::real();
    calls.loadNvidiaFunctions = {};
    calls.fileSystemSpace = [](const std::string&) {
        return std::optional(FileSystemSpace{500'000'000'000, 200'000'000'000});
    };
    return calls;
}

// Lanes that take nothing: what is left is what the tick does itself. The slow sources' texts are measured
// one by one, since most of a slow source is opening its files.
LinuxKernel::Lanes noLanes() {
    struct NoLane final : Lane {
        bool post(Task) override { return false; }
    };
    LinuxKernel::Lanes lanes = LinuxKernel::Lanes::sameThread();
    lanes.make = [](const std::string&) { return std::make_unique<NoLane>(); };
    return lanes;
}

// What a run of full ticks reads on a machine of files.
std::vector<std::vector<std::string>> readsOn(const std::string& root) {
    const auto reads = std::make_shared<ReadsOfTicks>();
    LiveSampler sampler(true, RootFolder(root, reads), callsOfFiles(), noLanes());
    for (int tick = 0; tick < kTicks; ++tick) {
        reads->ticks.emplace_back();
        reads->isListening = true;
        sampler.tick();
        reads->isListening = false;
        sampler.publish();
    }
    return reads->ticks;
}

void add(const std::string& name, int iterations, std::function<void(benchmark::State&)> body) {
    registerMeasured(name, iterations, kRepetitions, std::move(body));
}

void addMachine(const std::string& name, const std::string& root, std::shared_ptr<void> keptAlive) {
    const auto nothing = [] {};
    const auto scan = std::make_shared<ScanLoop>(root, readsOn(root));
    add(name + ": scan", kTicks, [scan, nothing, keptAlive](benchmark::State& state) {
        measure(
            state, nothing, [&] { benchmark::DoNotOptimize(scan->readTick()); }, nothing);
        state.counters["reads"] = static_cast<double>(scan->reads());
    });
    const auto sampler = std::make_shared<LiveSampler>(true, RootFolder(root), callsOfFiles(), noLanes());
    add(name + ": full tick", kTicks, [sampler, nothing, keptAlive](benchmark::State& state) {
        measure(
            state, nothing, [&] { sampler->tick(); }, [&] { sampler->publish(); });
    });
}

// One kind of text.
struct Parser {
    const char* name;
    // Of a fixture, or of the server.
    const char* machine;
    const char* path;
    std::function<void(std::string_view text)> parse;
};

template <typename Result>
auto parsedBy(Result (*parse)(std::string_view)) {
    return [parse](std::string_view text) { benchmark::DoNotOptimize(parse(text)); };
}

const std::vector<Parser>& parsers() {
    static const std::vector<Parser> all{
        {"stat", kServer, "/proc/stat",
         [processors = std::vector<ProcessorTicks>()](std::string_view text) mutable {
             benchmark::DoNotOptimize(parseMachineTicks(text));
             parseProcessorTicks(text, processors);
         }},
        {"meminfo", "uniform-desktop", "/proc/meminfo", parsedBy(parseMemInfo)},
        {"vmstat", "uniform-desktop", "/proc/vmstat", parsedBy(parseVmStat)},
        {"diskstats", kServer, "/proc/diskstats",
         [lines = std::vector<DiskStatsLine>()](std::string_view text) mutable {
             parseDiskStats(text, lines);
         }},
        {"mountinfo", kServer, "/proc/self/mountinfo", parsedBy(parseMountInfo)},
        {"uevent", "hybrid-laptop", "/sys/class/power_supply/BAT0/uevent", parsedBy(parsePowerSupplyUevent)},
    };
    return all;
}

void addParser(const Parser& parser, const std::string& text) {
    const auto nothing = [] {};
    const std::string name = std::string("text of ") + parser.name;
    add(name + ": scan", kTicks, [text, nothing](benchmark::State& state) {
        measure(
            state, nothing, [&] { benchmark::DoNotOptimize(scanEveryByte(text)); }, nothing);
    });
    add(name + ": parse", kTicks, [text, parser, nothing](benchmark::State& state) {
        measure(
            state, nothing, [&] { parser.parse(text); }, nothing);
        state.counters["bytes"] = static_cast<double>(text.size());
    });
}

std::string nameOf(const Growth& growth, int size) {
    return std::to_string(size) + " " + growth.what;
}

// One operation on servers that differ in one size.
void addGrowth(const Growth& growth, const std::function<std::unique_ptr<MadeServer>(int size)>& make,
               std::function<void(LinuxKernel& kernel)> ask) {
    for (const int size : growth.sizes) {
        const std::shared_ptr<MadeServer> server = make(size);
        const auto kernel = std::make_shared<LinuxKernel>(RootFolder(server->path()), callsOfFiles(),
                                                          LinuxKernel::Lanes::sameThread());
        ask(*kernel);
        add(nameOf(growth, size), 4, [server, kernel, ask](benchmark::State& state) {
            // Mounts of servers are asked on threads, which a busy machine may start late.
            measureProcessorTime(state, [&] { ask(*kernel); });
        });
    }
}

// What takes a text apart beside what only looks at it.
void addScanFigure(const SampleReporter& samples, const std::string& name, const char* what,
                   FigureTable& table) {
    table.add({.what = name + ", " + what,
               .samples = samples.times(name + ": " + what),
               .unit = "us",
               .beside = FigureTable::Beside{"scanning every byte", samples.times(name + ": scan")},
               .ratioBound = kMostTimesTheScan});
}

void addGrowthFigures(const SampleReporter& samples, const Growth& growth, FigureTable& table) {
    for (std::size_t i = 0; i < growth.sizes.size(); ++i) {
        FigureTable::Row row{.what = nameOf(growth, growth.sizes[i]),
                             .samples = samples.times(nameOf(growth, growth.sizes[i])),
                             .unit = "us"};
        if (i > 0) {
            const int less = growth.sizes[i - 1];
            const double doublings = std::log2(static_cast<double>(growth.sizes[i]) / less);
            row.beside = FigureTable::Beside{std::to_string(less), samples.times(nameOf(growth, less))};
            row.ratioBound = std::pow(kMostForTwice, doublings);
        }
        table.add(std::move(row));
    }
}

}  // namespace

void registerMachineBenchmarks() {
    const auto server = std::make_shared<MadeServer>(256, 24, 2000);
    const auto folderOf = [&server](const std::string& machine) {
        return machine == kServer ? server->path() : NORVANE_SOURCE_DIR "/tests/fixtures/" + machine;
    };
    for (const char* const machine : kMachines)
        addMachine(machine, folderOf(machine), server);
    for (const Parser& parser : parsers())
        addParser(parser,
                  RootFolder(folderOf(parser.machine)).read(parser.path, std::size_t{1} << 24).value_or(""));
    const auto none = TickToken::none();
    addGrowth(
        kProcessors, [](int size) { return std::make_unique<MadeServer>(size, 1, 12); },
        [none](LinuxKernel& kernel) {
            benchmark::DoNotOptimize(kernel.hostPort().host_statistics(none));
            benchmark::DoNotOptimize(kernel.hostPort().host_processor_info(none));
        });
    addGrowth(
        kDrives, [](int size) { return std::make_unique<MadeServer>(2, size, 12); },
        [none](LinuxKernel& kernel) {
            benchmark::DoNotOptimize(
                kernel.registry().IOServiceGetMatchingServices(RegistryService::IOBlockStorageDriver, none));
        });
    addGrowth(
        kMounts, [](int size) { return std::make_unique<MadeServer>(2, 1, size); },
        [none](LinuxKernel& kernel) {
            benchmark::DoNotOptimize(kernel.fileManager().mountedVolumeURLs(none));
        });
}

void addMachineFigures(const SampleReporter& samples, FigureTable& table) {
    for (const char* machine : kMachines)
        addScanFigure(samples, machine, "full tick", table);
    for (const Parser& parser : parsers())
        addScanFigure(samples, std::string("text of ") + parser.name, "parse", table);
    for (const Growth* growth : {&kProcessors, &kDrives, &kMounts})
        addGrowthFigures(samples, *growth, table);
}

}  // namespace norvane
