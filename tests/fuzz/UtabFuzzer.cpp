#include "platform/linux/DesktopMountOptions.h"
#include "Property.h"

namespace norvane {

void check(std::string_view text) {
    const auto options = parseUtab(text);
    require(options.size() <= lineCount(text), "a mount has a line of its own");
    require(parseUtab(amongUnknownLines(text)) == options, "unknown lines don't matter");
    std::string printed;
    for (const auto& [point, told] : options) {
        require(!point.empty(), "options are of some mount");
        printed += "SRC=/dev/sda1 TARGET=" + withBlanksEscaped(point) + " ROOT=/ OPTS=user" +
                   (told.hide ? ",x-gvfs-hide" : "") + (told.show ? ",x-gvfs-show" : "") + '\n';
    }
    require(parseUtab(printed) == options, "the options survive printing");
}

}  // namespace norvane
