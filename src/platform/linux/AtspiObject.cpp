#include "platform/linux/AtspiObject.h"

#include "platform/Utf8.h"

namespace norvane {
namespace {

AtspiRole roleOf(const AccessibleNode& node) {
    switch (node.role) {
        case AccessibleRole::group:
            return AtspiRole::panel;
        case AccessibleRole::text:
            return AtspiRole::label;
        case AccessibleRole::heading:
            return AtspiRole::heading;
        case AccessibleRole::image:
            return AtspiRole::image;
        case AccessibleRole::button:
            // One that opens and closes something stays down while that is open.
            return node.isExpanded ? AtspiRole::toggleButton : AtspiRole::pushButton;
        case AccessibleRole::link:
            return AtspiRole::link;
        case AccessibleRole::toggle:
            return AtspiRole::toggleButton;
        case AccessibleRole::radioButton:
            return AtspiRole::radioButton;
        case AccessibleRole::spinButton:
            return AtspiRole::spinButton;
        case AccessibleRole::meter:
            return AtspiRole::levelBar;
        case AccessibleRole::scrollArea:
            return AtspiRole::scrollPane;
        case AccessibleRole::separator:
            return AtspiRole::separator;
        case AccessibleRole::progress:
            return AtspiRole::progressBar;
    }
    return AtspiRole::panel;
}

// Screen readers say the number of a value in percent by themselves.
bool isSaidByNumber(const AccessibleNode& node) {
    return node.number && node.role == AccessibleRole::meter && node.value.ends_with('%');
}

}  // namespace

AtspiObject AtspiObject::of(const AccessibleNode& node) {
    // A bus takes nothing else than well-formed texts.
    const std::string value = repairedUtf8(node.value);
    AtspiObject object{.role = roleOf(node), .name = repairedUtf8(node.name)};
    object.isText = object.role == AtspiRole::label || object.role == AtspiRole::heading;
    object.isLive = node.isLive;
    object.key = node.key;
    object.actions = node.actions;
    object.number = node.number;
    object.valueText = value;
    if (object.isText) {
        // A figure beside its label is one text.
        if (!value.empty()) object.name += ", " + value;
    } else if (!isSaidByNumber(node)) {
        object.description = value;
    }

    AtspiStates& states = object.states;
    states.set(AtspiState::visible);
    states.set(AtspiState::enabled, node.isEnabled);
    states.set(AtspiState::sensitive, node.isEnabled);
    states.set(AtspiState::focusable, node.isFocusable);
    states.set(AtspiState::focused, node.isFocused);
    if (node.isOn || node.isExpanded) {
        const bool isDown = node.isOn.value_or(node.isExpanded.value_or(false));
        states.set(AtspiState::checkable);
        states.set(AtspiState::checked, isDown);
        states.set(AtspiState::pressed, isDown && object.role == AtspiRole::toggleButton);
    }
    states.set(AtspiState::expandable, node.isExpanded.has_value());
    states.set(AtspiState::expanded, node.isExpanded.value_or(false));
    states.set(AtspiState::readOnly, object.isText);
    states.set(AtspiState::horizontal,
               object.role == AtspiRole::levelBar || object.role == AtspiRole::separator);
    const bool isGoingOn = object.role == AtspiRole::progressBar && !node.number;
    states.set(AtspiState::busy, isGoingOn);
    states.set(AtspiState::indeterminate, isGoingOn);
    // A description that changes every second would be said every second by what follows its changes.
    states.set(AtspiState::transient, !object.description.empty());
    return object;
}

}  // namespace norvane
