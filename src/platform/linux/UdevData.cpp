#include "platform/linux/UdevData.h"

#include "platform/linux/EscapedText.h"
#include "platform/linux/KernelText.h"

namespace norvane {

UdevData parseUdevData(std::string_view text) {
    UdevData data;
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        // Not ID_FS_LABEL, which has other characters in place of those that are not safe in a shell.
        constexpr std::string_view kLabel = "E:ID_FS_LABEL_ENC=";
        if (line.starts_with(kLabel) && line.size() > kLabel.size()) {
            data.fileSystemLabel = decodedHex(line.substr(kLabel.size()));
        }
        if (line == "E:UDISKS_IGNORE=1") data.isIgnored = true;
    }
    return data;
}

}  // namespace norvane
