#include "platform/linux/OsReleaseName.h"
#include "Property.h"

namespace norvane {

void check(std::string_view text) {
    const auto name = parseOsReleaseName(text);
    require(parseOsReleaseName(amongUnknownLines(text)) == name, "unknown lines don't matter");
    if (!name) return;
    require(!name->empty() && name->find('\n') == std::string::npos, "a name is one line");
    require(text.find("NAME=") != std::string_view::npos, "there is no name without its line");
    std::string quoted;
    for (const char byte : *name) {
        if (std::string_view("\"$`\\").find(byte) != std::string_view::npos) quoted += '\\';
        quoted += byte;
    }
    require(parseOsReleaseName("ID=x\nNAME=\"" + quoted + "\"\nPRETTY_NAME=y\n") == name,
            "the name survives printing");
}

}  // namespace norvane
