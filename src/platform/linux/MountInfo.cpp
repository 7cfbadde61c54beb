#include "platform/linux/MountInfo.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <optional>
#include <unordered_set>
#include <utility>

#include "platform/linux/EscapedText.h"
#include "platform/linux/KernelText.h"

namespace norvane {

namespace {

// Up to the next blank. Fields may be empty: a source that is none leaves two blanks in a row.
std::string_view takeField(std::string_view& line, char separator = ' ') {
    const std::size_t end = std::min(line.find(separator), line.size());
    const std::string_view field = line.substr(0, end);
    line.remove_prefix(std::min(end + 1, line.size()));
    return field;
}

// The kernel says "ro" or "rw" before all other options.
bool saysReadOnly(std::string_view options) {
    return takeField(options, ',') == "ro";
}

std::optional<Mount> parseMount(std::string_view line) {
    // The kernel writes none, and a path that is cut at one leads elsewhere.
    if (line.find('\0') != std::string_view::npos) return std::nullopt;
    const auto id = parseNumber(takeField(line));
    const auto parentId = parseNumber(takeField(line));
    const auto device = parseDeviceNumber(takeField(line));
    const std::string_view root = takeField(line);
    const std::string_view point = takeField(line);
    const std::string_view options = takeField(line);
    if (!id || !parentId || !device || !point.starts_with('/')) return std::nullopt;
    // Newer kernels may add fields before the mark.
    do {
        if (line.empty()) return std::nullopt;
    } while (takeField(line) != "-");
    const std::string_view type = takeField(line);
    const std::string_view source = takeField(line);
    const std::string_view superOptions = line;
    if (type.empty()) return std::nullopt;
    return Mount{.id = *id,
                 .parentId = *parentId,
                 .device = *device,
                 .root = decodedOctal(root),
                 .point = decodedOctal(point),
                 .isReadOnly = saysReadOnly(options) || saysReadOnly(superOptions),
                 .type = std::string(type),
                 .source = decodedOctal(source)};
}

// Finds mounts by a hash that whoever asks has worked out, and a test for the right one. Thousands of mounts
// are looked up several times each, so it is one flat table rather than nodes.
class MountTable {
 public:
    explicit MountTable(std::size_t most) : slots_(std::bit_ceil(2 * most + 1), nullptr) {}

    // The first mount of that hash for which `isWanted` holds; null if there is none.
    template <typename IsWanted>
    const Mount* find(std::uint64_t hash, IsWanted&& isWanted) const {
        std::size_t slot = slotOf(hash);
        while (slots_[slot] != nullptr && !isWanted(*slots_[slot]))
            slot = (slot + 1) & (slots_.size() - 1);
        return slots_[slot];
    }
    // At most as many as were announced.
    void add(std::uint64_t hash, const Mount& mount) {
        std::size_t slot = slotOf(hash);
        while (slots_[slot] != nullptr)
            slot = (slot + 1) & (slots_.size() - 1);
        slots_[slot] = &mount;
    }

 private:
    std::size_t slotOf(std::uint64_t hash) const {
        constexpr std::uint64_t kGoldenRatio = 0x9E3779B97F4A7C15u;
        return static_cast<std::size_t>((hash * kGoldenRatio) >> 32) & (slots_.size() - 1);
    }

    std::vector<const Mount*> slots_;
};

std::uint64_t mixed(std::uint64_t hash, std::uint64_t with) {
    return (hash ^ with) * 0xFF51AFD7ED558CCDu + (hash >> 29);
}

// Goes over a mount point from the top and calls `visit` with each folder's path and hash (FNV-1a), the mount
// point itself last, all in one pass.
template <typename Visit>
void visitFoldersOf(std::string_view point, Visit&& visit) {
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (std::size_t k = 1; k < point.size(); ++k) {
        if (point[k] == '/') visit(point.substr(0, k), hash);
        hash = (hash ^ static_cast<unsigned char>(point[k])) * 0x100000001B3u;
    }
    visit(point, hash);
}

// A later mount on the same folder covers the earlier one. So does one on a folder above, if it was made on
// the same parent: what is mounted within it has it as its parent. With a mount goes all that lies on it.
void removeCovered(std::vector<Mount>& mounts) {
    std::vector<bool> isCovered(mounts.size(), false);
    std::unordered_set<std::uint64_t> coveredAsWhole;
    MountTable laterByPoint(mounts.size());
    MountTable laterByParent(mounts.size());
    for (std::size_t i = mounts.size(); i-- > 0;) {
        const Mount& mount = mounts[i];
        visitFoldersOf(mount.point, [&](std::string_view folder, std::uint64_t hash) {
            const auto isThere = [&](const Mount& later) { return later.point == folder; };
            const auto isSibling = [&](const Mount& later) {
                return later.parentId == mount.parentId && later.point == folder;
            };
            const bool hasSibling = laterByParent.find(mixed(hash, mount.parentId), isSibling) != nullptr;
            if (folder.size() < mount.point.size()) {
                if (hasSibling) coveredAsWhole.insert(mount.id);
                return;
            }
            isCovered[i] = laterByPoint.find(hash, isThere) != nullptr;
            if (!isCovered[i]) laterByPoint.add(hash, mount);
            // What is mounted over the root of all is left to the rule for equal mount points.
            if (mount.point != "/" && !hasSibling) laterByParent.add(mixed(hash, mount.parentId), mount);
        });
    }
    for (std::size_t i = 0; i < mounts.size(); ++i) {
        if (coveredAsWhole.contains(mounts[i].parentId)) coveredAsWhole.insert(mounts[i].id);
        if (coveredAsWhole.contains(mounts[i].id)) isCovered[i] = true;
    }
    std::size_t kept = 0;
    for (std::size_t i = 0; i < mounts.size(); ++i) {
        if (isCovered[i]) continue;
        if (kept != i) mounts[kept] = std::move(mounts[i]);
        ++kept;
    }
    mounts.erase(mounts.begin() + static_cast<std::ptrdiff_t>(kept), mounts.end());
}

}  // namespace

std::vector<Mount> parseMountInfo(std::string_view text) {
    std::vector<Mount> mounts;
    mounts.reserve(static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')));
    while (!text.empty()) {
        if (auto mount = parseMount(takeLine(text))) mounts.push_back(std::move(*mount));
    }
    removeCovered(mounts);
    return mounts;
}

}  // namespace norvane
