#include "scenario/ScenarioPlayer.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "scenario/Objection.h"
#include "scenario/SnapshotFields.h"
#include "Transcripts.h"

namespace norvane {
namespace {

using Lines = std::vector<std::string>;

// One member for each kind of line, with answers that are taken.
const Lines kSamples = {
    R"({"processors": 4})",
    R"({"load": 30})",
    R"({"load": [90, 10, 0, 0.5]})",
    R"({"host_statistics": {"user": 100, "system": 20, "idle": 900, "nice": 0}})",
    R"({"host_statistics": "counted"})",
    R"({"host_processor_info": [{"user": 25, "idle": 225}, {"system": 4294967295}]})",
    R"({"host_processor_info": "counted"})",
    R"({"memory": {"wiredGB": 2, "appGB": 6, "compressedGB": 1, "cachedGB": 4, "swapUsedGB": 1.5,
        "swapReadMBps": 12, "swapWriteMBps": 0}})",
    R"({"host_statistics64": {"wire_count": 262144, "swapins": 7, "swapouts": 8, "purgeable_count": 9}})",
    R"({"host_page_size": 16384})",
    R"({"vm.swapusage": {"xsu_total": 3, "xsu_avail": 2, "xsu_used": 1}})",
    R"({"physicalMemory": 17179869184})",
    R"({"kern.memorystatus_vm_pressure_level": 2})",
    R"({"hw.model": "MacBookPro18,3"})",
    R"({"thermalState": 2})",
    R"({"systemUptime": 5000.5})",
    R"({"isLowPowerModeEnabled": true})",
    R"({"disk": {"readMBps": 100, "writeMBps": 20}})",
    R"json({"IOBlockStorageDriver": [{"Statistics": {"Bytes (Read)": 1, "Bytes (Write)": 2}}, null]})json",
    R"({"IOAccelerator": [{"PerformanceStatistics": {"Device Utilization %": 40}}]})",
    R"({"AppleSmartBattery": [{"CurrentCapacity": 80, "MaxCapacity": 100, "ExternalConnected": false}]})",
    R"({"AppleSmartBattery": {"CurrentCapacity": 79, "ExternalConnected": null}})",
    R"({"IOPSCopyPowerSourcesInfo": [{"Is Charged": false, "Time to Empty": 90}, null]})",
    R"({"mountedVolumeURLs": {"/": {"volumeName": "Root", "volumeTotalCapacity": 2e11,
        "volumeAvailableCapacity": 60000000000, "volumeIsInternal": true, "volumeIsRootFileSystem": true,
        "volumeIsEjectable": false}, "/media/stick": null}})",
    R"({"preference": {"storageAlertThresholdGB": 50, "lastViewedPod": null}})",
    R"({"notifications": {"error": "text"}})",
    R"({"notifications": "delivered"})",
    R"({"authorization": "denied"})",
    R"({"note": "text"})",
    R"({"show": ["label", "snapshot"]})",
    R"({"print": {"every": "10s"}})",
    R"({"print": "changes"})",
    R"({"user": "open"})",
    R"({"press": "tab"})",
    R"({"clickOn": "CPU"})",
    R"({"suspend": "8h"})",
    R"({"stepWallClock": "-1h"})",
    R"({"wait": "3s"})",
    R"({"user": "quit"})",
};

std::string onOneLine(std::string text) {
    for (char& c : text)
        if (c == '\n') c = ' ';
    return text;
}

// A scenario of these lines.
std::string lines(const Lines& lines) {
    std::string scenario;
    for (const std::string& line : lines)
        scenario += onOneLine(line) + '\n';
    return scenario;
}

// The fields as they are once the machine answers so, with the dashboard open for some seconds.
Json snapshotOf(const std::string& answers) {
    ScenarioPlayer player([](std::string_view) {});
    for (const std::string& line : linesOf(answers))
        player.play(line);
    player.play(R"({"user": "open", "wait": "4s"})");
    Json fields;
    for (const SnapshotField& field : snapshotFields())
        fields[std::string(field.name)] = field.shown(*player.sight().sampler()->snapshot().get());
    return fields;
}

TEST(ScenarioPlayer, PlaysEveryKindOfLine) {
    const Lines printed = played(lines(kSamples));
    ASSERT_FALSE(printed.empty());
    EXPECT_EQ(printed.front(), "text");
    EXPECT_TRUE(printed.back().starts_with("08:00:03.000 label=null snapshot.isAppleSilicon=null"))
        << "the program has been quit: " << printed.back();
}

TEST(ScenarioPlayer, PrintsChangesTicksIntervalsAndMomentsAsAsked) {
    EXPECT_EQ(
        played(lines({R"({"show": ["label"], "load": 10})", R"({"wait": "3s"})", R"({"load": 20})",
                      R"({"wait": "2.5s"})", R"({"print": "tick"})", R"({"wait": "2s"})",
                      R"({"print": {"every": "1500ms"}})", R"({"wait": "3s"})",
                      R"({"print": "nothing", "load": 30})", R"({"wait": "3s"})", R"({"print": "now"})"})),
        (Lines{R"(00:00:00.000 label="0% 4.0G")", R"(00:00:01.000 label="10% 4.0G")",
               R"(00:00:04.000 label="20% 4.0G")", R"(00:00:06.000 label="20% 4.0G")",
               R"(00:00:07.000 label="20% 4.0G")", R"(00:00:09.000 label="20% 4.0G")",
               R"(00:00:10.500 label="20% 4.0G")", R"(00:00:13.500 label="30% 4.0G")"}));
}

TEST(ScenarioPlayer, QuitsAndStartsAgain) {
    EXPECT_EQ(played(lines({R"({"show": ["isRunning", "isUIVisible"], "wait": "1s"})",
                            R"({"user": "open", "clickOn": "Quit"})", R"({"wait": "5s"})",
                            R"({"user": "launch", "wait": "1s"})", R"({"user": "launch"})"})),
              (Lines{"00:00:00.000 isRunning=true isUIVisible=false", "00:00:01.000 isUIVisible=true",
                     "00:00:01.000 isRunning=false isUIVisible=null",
                     "00:00:06.000 isRunning=true isUIVisible=false", "5: the program runs already"}));
    EXPECT_EQ(played("{\"user\": \"quit\"}\n{\"press\": \"escape\"}\n").back(),
              "2: the program does not run any more: {\"user\": \"launch\"} starts it again");
}

TEST(ScenarioPlayer, AUserClosesTheDashboardInEveryWay) {
    for (const char* closing : {R"({"user": "click"})", R"({"user": "close"})", R"({"user": "clickOutside"})",
                                R"({"user": "focusElsewhere"})", R"({"press": "escape"})"}) {
        const Lines printed =
            played(lines({R"({"show": ["isUIVisible"], "user": "open", "wait": "1s"})", closing}));
        EXPECT_EQ(printed.back(), "00:00:01.000 isUIVisible=false") << closing;
    }
}

TEST(ScenarioPlayer, AFailingOperationLeavesTheOthersTheirValues) {
    const std::string healthy = lines(
        {R"({"load": 40, "memory": {"wiredGB": 2, "appGB": 6, "swapUsedGB": 3, "swapReadMBps": 4}})",
         R"({"AppleSmartBattery": [{"CurrentCapacity": 50, "MaxCapacity": 100, "ExternalConnected": false}]})",
         R"({"IOPSCopyPowerSourcesInfo": [{"Time to Empty": 90}]})",
         R"({"mountedVolumeURLs": {"/": {"volumeTotalCapacity": 2e11, "volumeIsRootFileSystem": true}}})"});
    const Json before = snapshotOf(healthy);
    struct Case {
        const char* name;
        // The fields that change, and what they become.
        const char* after;
    };
    for (const Case& c : {
             Case{"host_statistics", R"({"cpuUsagePercent": 0.0, "cpuSustained": 0.0})"},
             Case{"host_statistics64",
                  R"({"usedMemoryGB": 0.0, "wiredMemoryGB": 0.0, "appMemoryGB": 0.0, "swapUsedGB": 0.0,
                      "cachedFilesGB": 0.0, "swapReadMBps": 0.0, "isMemorySwapHigh": false})"},
             Case{"AppleSmartBattery",
                  R"({"isOnBattery": false, "batteryMaxCapacitymAh": null, "batteryCurrentCapacitymAh": null,
                      "batteryPercentage": 100, "batteryTimeRemaining": "Fully Charged", "hasBattery": false})"},
             Case{"mountedVolumeURLs", R"({"usedDiskGB": 0.0, "totalDiskGB": 0.0, "volumes": [],
                  "isStorageCritical": false, "isStorageLow": false, "isStorageFilling": false})"},
         }) {
        Json expected = before;
        const Json changes = parsedJson(c.after);
        for (const auto& [field, value] : changes.items()) {
            ASSERT_TRUE(expected.contains(field)) << field;
            expected[field] = value;
        }
        const Json after = snapshotOf(healthy + "{\"" + c.name + "\": null}\n");
        // The performance-core mean moves the impact alone, which five seconds hold back.
        EXPECT_EQ(after, expected) << c.name;
        EXPECT_NE(after, before) << c.name << " was healthy before";
    }
}

TEST(ScenarioPlayer, SaysWhatIsWrongWithALineAndWhere) {
    struct Case {
        const char* line;
        const char* objection;
    };
    for (const Case& c : {
             Case{"{", "is not JSON, at character 2"},
             Case{"\xFF", "is not JSON, at character 1"},
             Case{"[1]", "is no object"},
             Case{R"({"load": 1e999})", "has a number that is too large"},
             Case{R"({"load": 1, "load": 2})", "says \"load\" twice"},
             Case{R"({"note": [[[[[[[[[[[[[[[[[[[[1]]]]]]]]]]]]]]]]]]]]})", "is nested too deeply"},
             Case{R"({"lod": 1})", "\"lod\" is not known"},
             Case{R"({"memory": {"wired": 1}})", "\"memory.wired\" is not known"},
             Case{R"({"load": 101})", "\"load\" is to be a number from 0.0 to 100.0"},
             Case{R"({"load": "nan"})", "\"load\" is to be a number from 0.0 to 100.0"},
             Case{R"({"load": [1, 2]})", "\"load\" is to be a load for each of the 4 processors"},
             Case{R"({"host_statistics": {"user": -1}})",
                  "\"host_statistics.user\" is to be a whole number from 0 to 4294967295"},
             Case{R"({"host_page_size": 0})",
                  "\"host_page_size\" is to be a whole number from 1 to 18446744073709551615"},
             Case{R"({"isLowPowerModeEnabled": 1})", "\"isLowPowerModeEnabled\" is to be true or false"},
             Case{R"({"hw.model": 3})", "\"hw.model\" is to be a text"},
             Case{R"({"IOAccelerator": 3})",
                  "\"IOAccelerator\" is to be a list: there is none yet of which "
                  "properties could be changed"},
             Case{R"({"IOAccelerator": [{"x": [1]}]})",
                  "\"IOAccelerator[0].x\" is to be true or false, a number, a text or an object"},
             Case{R"({"mountedVolumeURLs": {"root": null}})", "\"root\" is no path: it is to begin with /"},
             Case{R"({"preference": {"volume": 11}})", "\"volume\" is no key of the preferences"},
             Case{R"({"show": ["snapshot.cpu"]})", "there is no \"snapshot.cpu\" to show"},
             Case{R"({"wait": "90"})",
                  "\"wait\" is to be a time such as \"90s\", with ms, s, min or h, at most 10000h"},
             Case{R"({"wait": "10001h"})",
                  "\"wait\" is to be a time such as \"90s\", with ms, s, min or h, at most 10000h"},
             Case{R"({"stepWallClock": "tomorrow"})",
                  "\"stepWallClock\" is to be a time such as \"+1h\" or \"-30min\""},
             Case{R"({"wait": "0.9999999999h"})",
                  "\"wait\" is to be a time such as \"90s\", with ms, s, min or h, at most 10000h"},
             Case{R"({"clickOn": "Quit"})", "the dashboard is closed"},
             Case{R"({"user": "open", "clickOn": "Bluetooth"})", "the dashboard has no \"Bluetooth\""},
         }) {
        EXPECT_EQ(played(std::string("\n{}\n") + c.line + "\n").back(), std::string("3: ") + c.objection)
            << c.line;
    }
}

TEST(ScenarioPlayer, PartsOfATimeAreExactHoweverManyPlacesTheyHave) {
    EXPECT_EQ(
        played(lines({R"({"print": "nothing", "show": ["isRunning"]})", R"({"wait": "0.999999999min"})",
                      R"({"print": "now", "suspend": "0.333333333h"})", R"({"print": "now"})",
                      R"({"suspend": "1.5h"})", R"({"print": "now"})"})),
        (Lines{"00:00:59.999 isRunning=true", "00:20:59.999 isRunning=true", "01:50:59.999 isRunning=true"}));
}

TEST(ScenarioPlayer, MemoryThatIsToldAgainCanBeReadAgain) {
    for (const char* again : {R"({"memory": {"wiredGB": 2}})", R"({"memory": {"swapReadMBps": 4}})",
                              R"({"host_statistics64": {}})"}) {
        const Json fields = snapshotOf(lines({R"({"host_statistics64": null})", again}));
        EXPECT_GT(fields["usedMemoryGB"], 0.0) << again;
    }
    const Json fields = snapshotOf(lines({R"({"host_statistics64": null, "memory": {"swapUsedGB": 2}})"}));
    EXPECT_EQ(fields["usedMemoryGB"], 0.0) << "the swap in use is asked for by itself";
}

// Megabytes of one line take no longer than the same in many.
TEST(ScenarioPlayer, BearsLongLines) {
    const auto repeated = [](std::string_view text, int times) {
        std::string all;
        for (int i = 0; i < times; ++i)
            all += text;
        return all;
    };
    const std::string devices = "{\"IOAccelerator\": [" + repeated("{},", 30'000) + "{}]}\n";
    EXPECT_EQ(played(devices + "{\"note\": \"done\"}\n"), Lines{"done"});
    EXPECT_EQ(played("{\"note\": " + repeated("[", 200'000)).back(), "1: is nested too deeply");
    std::string members = "\"first\": 1";
    for (int i = 0; i < 20'000; ++i)
        members += ", \"" + std::to_string(i) + "\": 1";
    EXPECT_EQ(played("{\"IOAccelerator\": [{" + members + "}]}\n").back(),
              "1: has an object of too many members");
}

TEST(ScenarioPlayer, ClocksStayWithinTheirRange) {
    std::string scenario;
    for (int i = 0; i < 200; ++i)
        scenario += "{\"suspend\": \"10000h\"}\n{\"stepWallClock\": \"-10000h\"}\n";
    EXPECT_EQ(played(scenario).back(),
              "175: \"suspend\" is to be a time that leaves the clocks within their range");
}

// Lines that were right before somebody's cat walked over the keyboard.
TEST(ScenarioPlayer, BearsAnyBytes) {
    std::mt19937 random(11);
    int objections = 0;
    for (int round = 0; round < 500; ++round) {
        std::string line = onOneLine(kSamples[random() % kSamples.size()]);
        // Not these: a digit more is a year of ticks.
        if (line.find("wait") != std::string::npos || line.find("suspend") != std::string::npos) continue;
        for (std::size_t changes = 1 + random() % 3; changes > 0; --changes) {
            const std::size_t at = random() % line.size();
            switch (random() % 4) {
                case 0:
                    line[at] = static_cast<char>(random() % 256);
                    break;
                case 1:
                    line.insert(at, 1, static_cast<char>(random() % 256));
                    break;
                case 2:
                    line.erase(at, 1 + random() % 4);
                    break;
                default:
                    line.insert(at, line.substr(random() % line.size()));
                    break;
            }
            if (line.empty()) line = "{}";
        }
        ScenarioPlayer player([](std::string_view) {});
        try {
            player.play(line);
            player.play(R"({"user": "open", "wait": "3s"})");
        } catch (const Objection&) {
            ++objections;
        }
    }
    EXPECT_GT(objections, 150);
}

}  // namespace
}  // namespace norvane
