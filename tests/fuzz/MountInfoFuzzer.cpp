#include <set>

#include "platform/linux/MountInfo.h"
#include "Property.h"

namespace norvane {
namespace {

std::string line(const Mount& mount) {
    return std::to_string(mount.id) + ' ' + std::to_string(mount.parentId) + ' ' + mount.device.text() + ' ' +
           withBlanksEscaped(mount.root) + ' ' + withBlanksEscaped(mount.point) +
           " rw,relatime shared:1 master:2 - " + mount.type + ' ' + withBlanksEscaped(mount.source) +
           (mount.isReadOnly ? " ro" : " rw") + '\n';
}

}  // namespace

void check(std::string_view text) {
    const std::vector<Mount> mounts = parseMountInfo(text);
    require(mounts.size() <= lineCount(text), "a mount has a line of its own");
    require(parseMountInfo(amongUnknownLines(text)) == mounts, "unknown lines don't matter");

    std::string printed;
    std::set<std::string> points;
    for (const Mount& mount : mounts) {
        require(mount.point.starts_with('/'), "a mount has a place");
        require(points.insert(mount.point).second, "one mount for each place");
        require((mount.point + mount.root + mount.source + mount.type).find('\0') == std::string::npos,
                "no text has a NUL in it");
        require(!mount.type.empty() && mount.type.find(' ') == std::string::npos, "a type is a word");
        printed += line(mount);
    }
    require(parseMountInfo(printed) == mounts, "the mounts survive printing, and none covers another");
}

}  // namespace norvane
