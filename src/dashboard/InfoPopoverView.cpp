#include "dashboard/InfoPopoverView.h"

#include <utility>

#include "dashboard/FeedbackAddress.h"
#include "drawing/NamedFonts.h"
#include "views/Divider.h"
#include "views/Image.h"
#include "views/Link.h"
#include "views/Stack.h"
#include "views/Symbol.h"
#include "views/Text.h"

namespace norvane {
namespace {

Element section(const std::string& symbolName, const std::string& title, const std::string& words) {
    const TextStyle titleStyle{.font = font::system(12, FontWeight::medium)};
    const TextStyle wordsStyle{.font = font::system(13), .lineSpacing = 1.5};
    return vstack({.alignment = Alignment::start, .spacing = 6},
                  hstack({.spacing = 6},                                        //
                         symbol(symbolName, font::system(11), Ink::secondary),  //
                         text(title, titleStyle)                                //
                             .accessible({.role = AccessibleRole::heading, .name = title})),
                  text(words, wordsStyle, Ink::secondary));
}

}  // namespace

InfoPopoverView::InfoPopoverView(const Platform& platform)
    : mainBundle_(platform.mainBundle),
      workspace_(platform.workspace),
      hosted_([this] { return body(); }, platform) {}

Element InfoPopoverView::body() const {
    const TextStyle introduction{.font = font::system(13)};
    return vstack(
               {.alignment = Alignment::start, .spacing = 20},  //
               header(),                                        //
               divider(),                                       //
               text(
                   "Norvane gives you a clear view of your Mac's health, right from the menu bar. Quiet when "
                   "everything is fine. precise when it matters.",
                   introduction, Paint(Ink::primary).withOpacity(0.9)),
               sections(),  //
               divider(),   //
               footer())
        .padding(Insets::all(20))
        .frame({.width = kWidth});
}

Element InfoPopoverView::header() const {
    const TextStyle name{.font = font::system(18, FontWeight::semibold)};
    const TextStyle claim{.font = font::system(13)};
    return hstack(
        {.spacing = 16},                 //
        image("NorvaneIcon", {48, 48}),  //
        vstack({.alignment = Alignment::start, .spacing = 2},
               text("Norvane", name).accessible({.role = AccessibleRole::heading, .name = "Norvane"}),
               text("Performance. Simplified.", claim, Ink::secondary)));
}

Element InfoPopoverView::sections() const {
    return vstack(
        {.alignment = Alignment::start, .spacing = 16},
        section("eye", "How it works",
                "Reads CPU, memory, storage and battery in real time. Cuts through momentary spikes to "
                "tell you what's actually happening — and what it means for your Mac."),
        section("lock.shield", "Privacy First",
                "No analytics. No tracking. All telemetry processing and analysis run locally and "
                "securely on your Mac."));
}

Element InfoPopoverView::footer() const {
    const TextStyle thanks{.font = font::system(12, FontWeight::medium)};
    Font linkFont = font::kCaption;
    linkFont.weight = FontWeight::medium;
    const auto url = feedbackURL(kFeedbackAddress);
    return vstack({.alignment = Alignment::start, .spacing = 12},
                  text("Thank you for choosing Norvane.", thanks, Ink::secondary),
                  hstack({.alignment = Alignment::start, .spacing = 12},  //
                         vstack({.alignment = Alignment::start, .spacing = 4},
                                text("Version " + version(), {.font = font::kCaption}, Ink::secondary)),
                         when(url.has_value(), [&] {
                             return link("Send Feedback", {.font = linkFont},
                                         [this, url] { workspace_.openURL(*url); });
                         })));
}

std::string InfoPopoverView::version() const {
    const auto value = mainBundle_.objectForInfoDictionaryKey(MainBundle::kShortVersion);
    const std::string* text = value ? value->text() : nullptr;
    return text != nullptr ? *text : "1.0";
}

}  // namespace norvane
