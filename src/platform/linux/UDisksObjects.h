#pragma once

#include <glib.h>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/DeviceNumber.h"

namespace norvane {

// What the storage service (org.freedesktop.UDisks2, "UDisks Reference Manual") tells of block devices and
// drives: its objects at one moment.
class UDisksObjects {
 public:
    // A method that takes options and needs none.
    struct Call {
        std::string path;
        const char* interface;
        const char* method;
    };

    UDisksObjects() = default;
    // `objects` is a dictionary of the type `a{oa{sa{sv}}}`, with any content: a property that is missing or
    // of another type stands for what it is where there is nothing to say.
    explicit UDisksObjects(GVariant* objects);

    // The object of the file system on that device; none where there is none.
    std::optional<std::string> fileSystemOn(const DeviceNumber& device) const;

    // What sets the device free that the file system lies on, once that has been unmounted, in order: each is
    // worth a try whatever became of those before. `mounted` are the devices whose file systems are mounted
    // still: while there is another one on the same drive, that stays as it is.
    std::vector<Call> callsAfterUnmount(const std::string& fileSystem,
                                        const std::vector<DeviceNumber>& mounted) const;

    static constexpr const char* kBlock = "org.freedesktop.UDisks2.Block";
    static constexpr const char* kDrive = "org.freedesktop.UDisks2.Drive";
    static constexpr const char* kEncrypted = "org.freedesktop.UDisks2.Encrypted";
    static constexpr const char* kFilesystem = "org.freedesktop.UDisks2.Filesystem";
    static constexpr const char* kLoop = "org.freedesktop.UDisks2.Loop";
    static constexpr const char* kPartition = "org.freedesktop.UDisks2.Partition";

 private:
    // Paths are empty where there is no such object.
    struct Block {
        DeviceNumber device;
        std::string drive;
        // The encrypted device that this one is the readable side of.
        std::string encrypted;
        // What this is a partition of.
        std::string partitioned;
        bool isFileSystem = false;
        bool isLoop = false;
    };
    struct Drive {
        bool isEjectable = false;
        bool isRemovable = false;
        bool canPowerOff = false;
        // Drives that lose their power together share it; empty for one alone.
        std::string sibling;
    };
    // What a file system lies on, from the top down.
    struct Ground {
        // The encrypted devices, those that are opened last first.
        std::vector<std::string> encrypted;
        // Empty where there is none.
        std::string loop;
        std::string drive;
    };

    const Block* block(const std::string& path) const;
    Ground groundOf(const std::string& path) const;
    bool isPowerShared(const std::string& drive) const;

    std::map<std::string, Block> blocks_;
    std::map<std::string, Drive> drives_;
};

}  // namespace norvane
