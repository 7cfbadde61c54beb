#include "telemetry/DeviceModel.h"

#include <algorithm>
#include <array>

namespace norvane {
namespace {

struct Row {
    std::string_view contained;
    DeviceModel model;
};

// The first row whose text the identifier contains. The last one catches identifiers of the form "Mac14,2",
// whatever kind of machine they name.
constexpr std::array kRows{
    Row{"MacBookPro", {"MacBook Pro", "laptopcomputer"}},
    Row{"MacBookAir", {"MacBook Air", "laptopcomputer"}},
    Row{"MacBook", {"MacBook", "laptopcomputer"}},
    Row{"Macmini", {"Mac mini", "macmini"}},
    Row{"iMac", {"iMac", "desktopcomputer"}},
    Row{"MacPro", {"Mac Pro", "macpro.gen3.fill"}},
    Row{"Mac", {"MacBook", "laptopcomputer"}},
};
constexpr DeviceModel kAnyOther{"Mac", "applelogo"};

}  // namespace

DeviceModel deviceModelOf(std::string_view identifier) {
    const auto row = std::find_if(kRows.begin(), kRows.end(), [&](const Row& candidate) {
        return identifier.find(candidate.contained) != std::string_view::npos;
    });
    return row == kRows.end() ? kAnyOther : row->model;
}

}  // namespace norvane
