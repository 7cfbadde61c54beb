#include "platform/linux/Keyboard.h"

#include "platform/linux/X11Event.h"

namespace norvane {
namespace {

// The values of <X11/keysymdef.h>.
constexpr xcb_keysym_t kBackTab = 0xFE20;
constexpr xcb_keysym_t kSpace = 0x20;
constexpr xcb_keysym_t kTab = 0xFF09;
constexpr xcb_keysym_t kReturn = 0xFF0D;
constexpr xcb_keysym_t kEscape = 0xFF1B;
constexpr xcb_keysym_t kHome = 0xFF50;
constexpr xcb_keysym_t kLeft = 0xFF51;
constexpr xcb_keysym_t kUp = 0xFF52;
constexpr xcb_keysym_t kRight = 0xFF53;
constexpr xcb_keysym_t kDown = 0xFF54;
constexpr xcb_keysym_t kPageUp = 0xFF55;
constexpr xcb_keysym_t kPageDown = 0xFF56;
constexpr xcb_keysym_t kEnd = 0xFF57;
constexpr xcb_keysym_t kKeypadEnter = 0xFF8D;
// From Home to End in the same order.
constexpr xcb_keysym_t kKeypadHome = 0xFF95;
constexpr xcb_keysym_t kKeypadEnd = 0xFF9C;

bool isKeypadMotion(xcb_keysym_t symbol) {
    return symbol >= kKeypadHome && symbol <= kKeypadEnd;
}

std::optional<KeyEvent::Key> keyFor(xcb_keysym_t symbol) {
    using Key = KeyEvent::Key;
    switch (isKeypadMotion(symbol) ? symbol - kKeypadHome + kHome : symbol) {
        case kBackTab:
            return Key::backTab;
        case kSpace:
            return Key::space;
        case kTab:
            return Key::tab;
        case kReturn:
        case kKeypadEnter:
            return Key::returnKey;
        case kEscape:
            return Key::escape;
        case kHome:
            return Key::home;
        case kLeft:
            return Key::left;
        case kUp:
            return Key::up;
        case kRight:
            return Key::right;
        case kDown:
            return Key::down;
        case kPageUp:
            return Key::pageUp;
        case kPageDown:
            return Key::pageDown;
        case kEnd:
            return Key::end;
        default:
            return std::nullopt;
    }
}

}  // namespace

Keyboard::Keyboard(X11Connection& connection) : connection_(connection) {
    events_ = connection_.onEvent(connection_.root(), [this](const xcb_generic_event_t& event) {
        if (typeOf(event) == XCB_MAPPING_NOTIFY) symbols_.clear();
    });
}

std::optional<KeyEvent> Keyboard::keyOf(const xcb_key_press_event_t& press) {
    constexpr unsigned kCommands = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 | XCB_MOD_MASK_4;
    if ((press.state & kCommands) != 0) return std::nullopt;
    if (symbols_.empty()) load();
    const unsigned first = xcb_get_setup(connection_.get())->min_keycode;
    if (press.detail < first) return std::nullopt;
    const std::size_t at = std::size_t{press.detail - first} * columns_;
    if (columns_ == 0 || at >= symbols_.size()) return std::nullopt;
    // None of these keys differs between layouts: the unshifted symbol names it.
    auto key = keyFor(symbols_[at]);
    // With the keypad locked to digits, which is what the second modifier says everywhere, it types those.
    if (isKeypadMotion(symbols_[at]) && (press.state & XCB_MOD_MASK_2) != 0) return std::nullopt;
    if (!key) return std::nullopt;
    if (*key == KeyEvent::Key::tab && (press.state & XCB_MOD_MASK_SHIFT) != 0) key = KeyEvent::Key::backTab;
    return KeyEvent{*key};
}

void Keyboard::load() {
    const xcb_setup_t& setup = *xcb_get_setup(connection_.get());
    const auto count = static_cast<std::uint8_t>(setup.max_keycode - setup.min_keycode + 1);
    const X11Reply<xcb_get_keyboard_mapping_reply_t> reply(xcb_get_keyboard_mapping_reply(
        connection_.get(), xcb_get_keyboard_mapping(connection_.get(), setup.min_keycode, count), nullptr));
    if (!reply) return;
    columns_ = reply->keysyms_per_keycode;
    const xcb_keysym_t* const symbols = xcb_get_keyboard_mapping_keysyms(reply.get());
    symbols_.assign(symbols, symbols + xcb_get_keyboard_mapping_keysyms_length(reply.get()));
}

}  // namespace norvane
