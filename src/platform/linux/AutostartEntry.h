#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace norvane {

// A desktop entry (freedesktop.org) in a folder of what is started at login: what decides whether it is.
// Parsing takes any text: what is no line of an entry, an unknown key and a value of the wrong kind count as
// not written. Of a key that is there twice the last one counts.
struct AutostartEntry {
    // Desktops call something else "switched off" each, and each reads its own key.
    bool isDeleted = false;           // Hidden=true
    bool isSwitchedOffByKey = false;  // X-GNOME-Autostart-enabled=false or X-MATE-Autostart-enabled=false
    bool isApplication = false;       // Type=Application
    std::string exec;                 // the command line, still with its quotes and field codes
    std::string tryExec;              // empty for none
    std::optional<std::vector<std::string>> onlyShowIn;
    std::vector<std::string> notShowIn;

    static AutostartEntry parse(std::string_view text);

    // Whether a session of these desktops, the most particular first, starts it. `isProgram` is asked of
    // `tryExec`, if there is one.
    bool isStarted(const std::vector<std::string>& desktops,
                   const std::function<bool(const std::string& program)>& isProgram) const;

    // The text of an entry that has the program, a path from the root, started without arguments. None where
    // an entry cannot name it: one is UTF-8, and its program has no equals sign.
    static std::optional<std::string> textStarting(std::string_view program);
    // The text of one that hides those of the same name in folders that come later.
    static std::string deletedText();

    bool operator==(const AutostartEntry&) const = default;

 private:
    bool isShownOn(const std::vector<std::string>& desktops) const;
};

}  // namespace norvane
