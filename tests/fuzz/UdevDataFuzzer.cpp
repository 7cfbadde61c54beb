#include "platform/linux/UdevData.h"
#include "Property.h"

namespace norvane {
namespace {

std::string escaped(std::string_view text) {
    std::string result;
    for (const char byte : text) {
        if (byte == '\n') {
            result += "\\x0a";
        } else if (byte == '\\') {
            result += "\\x5c";
        } else {
            result += byte;
        }
    }
    return result;
}

}  // namespace

void check(std::string_view text) {
    const UdevData data = parseUdevData(text);
    require(parseUdevData(amongUnknownLines(text)) == data, "unknown lines don't matter");
    require(!data.fileSystemLabel || !data.fileSystemLabel->empty(), "a label is not empty");
    require(!data.fileSystemLabel || hasLine(text, "E:ID_FS_LABEL_ENC="),
            "nor is there one without its line");
    require(!data.isIgnored || hasLine(text, "E:UDISKS_IGNORE=1"), "a device is shown unless a line says so");
    std::string printed = "S:disk/by-id/x\nI:1234\nE:ID_FS_LABEL=other\n";
    if (data.isIgnored) printed += "E:UDISKS_IGNORE=1\n";
    if (data.fileSystemLabel) printed += "E:ID_FS_LABEL_ENC=" + escaped(*data.fileSystemLabel) + '\n';
    require(parseUdevData(printed) == data, "the data survives printing");
}

}  // namespace norvane
