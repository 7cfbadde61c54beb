#include "platform/linux/Swaps.h"
#include "Property.h"

namespace norvane {
namespace {

// The least number of kibibytes that is read as so many bytes.
std::string kibibytes(std::uint64_t bytes) {
    return std::to_string(bytes / 1024 + (bytes % 1024 == 0 ? 0 : 1));
}

}  // namespace

void check(std::string_view text) {
    std::vector<SwapArea> areas{{1, 2, 3}};  // left over from an earlier reading
    const bool isTable = parseSwaps(text, areas);
    require(isTable || areas.empty(), "what is no table has no areas");
    require(areas.empty() || areas.size() < lineCount(text), "an area has a line of its own below the head");

    std::vector<SwapArea> again;
    require(parseSwaps(beforeUnknownLines(text), again) == isTable, "unknown lines don't matter");
    require(again == areas, "unknown lines are no areas");

    std::string printed = "Filename\t\t\t\tType\t\tSize\t\tUsed\t\tPriority\n";
    for (const SwapArea& area : areas) {
        printed +=
            area.zram ? "/dev/zram" + std::to_string(*area.zram) + " partition" : "/swap\\040file file";
        printed += "\t" + kibibytes(area.sizeBytes) + "\t" + kibibytes(area.usedBytes) + "\t-2\n";
    }
    require(parseSwaps(printed, again) && again == areas, "the areas survive printing");
}

}  // namespace norvane
