#pragma once

#include <cstdint>

namespace norvane {

// What an object is to assistive technologies, by the numbers of AT-SPI ("AT-SPI2", freedesktop.org).
enum class AtspiRole : std::uint32_t {
    frame = 23,
    image = 27,
    label = 29,
    panel = 39,
    progressBar = 42,
    pushButton = 43,
    radioButton = 44,
    scrollPane = 49,
    separator = 50,
    spinButton = 52,
    toggleButton = 62,
    application = 75,
    heading = 83,
    link = 88,
    levelBar = 103,
};

// The name that goes with it there.
constexpr const char* nameOf(AtspiRole role) {
    switch (role) {
        case AtspiRole::frame:
            return "frame";
        case AtspiRole::image:
            return "image";
        case AtspiRole::label:
            return "label";
        case AtspiRole::panel:
            return "panel";
        case AtspiRole::progressBar:
            return "progress bar";
        case AtspiRole::pushButton:
            return "push button";
        case AtspiRole::radioButton:
            return "radio button";
        case AtspiRole::scrollPane:
            return "scroll pane";
        case AtspiRole::separator:
            return "separator";
        case AtspiRole::spinButton:
            return "spin button";
        case AtspiRole::toggleButton:
            return "toggle button";
        case AtspiRole::application:
            return "application";
        case AtspiRole::heading:
            return "heading";
        case AtspiRole::link:
            return "link";
        case AtspiRole::levelBar:
            return "level bar";
    }
    return "unknown";
}

}  // namespace norvane
