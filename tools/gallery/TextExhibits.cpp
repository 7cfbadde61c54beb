#include "gallery/TextExhibits.h"

#include <string>

#include "gallery/Captions.h"
#include "gallery/Showing.h"
#include "platform/Decimal.h"
#include "views/ShapeElement.h"
#include "views/Text.h"

namespace norvane::gallery {
namespace {

constexpr const char* kSentence =
    "The processor is busy with one program, and the memory has room for a good many more.";
constexpr double kParagraphWidth = 170;

Element paragraph(const std::string& name, const TextStyle& style) {
    return captioned(name, text(kSentence, style)
                               .frame({.width = kParagraphWidth, .horizontal = Alignment::start})
                               .padding(Insets::all(6))
                               .background(shape(Outline::roundedRectangle(6),
                                                 {.fill = Paint(Ink::primary).withOpacity(0.04)})));
}

}  // namespace

DisplayList typefaces(Stage& stage) {
    return pictureOf(stage, [] {
        struct Weight {
            const char* name;
            FontWeight weight;
        };
        constexpr Weight kWeights[] = {{"regular", FontWeight::regular},
                                       {"medium", FontWeight::medium},
                                       {"semibold", FontWeight::semibold},
                                       {"bold", FontWeight::bold}};
        std::vector<Element> rows;
        for (const Weight& weight : kWeights) {
            const auto sample = [&](double size, FontDesign design) {
                return text("Memory 11.8 GB",
                            {.font = {.size = size, .weight = weight.weight, .design = design}});
            };
            rows.push_back(labelled(weight.name, row(these(sample(13, FontDesign::standard),
                                                           sample(13, FontDesign::monospaced)))));
        }
        for (const double size : {9.0, 10.0, 11.0, 12.0, 13.0, 16.0, 22.0}) {
            rows.push_back(labelled(decimal(size, 0) + " points",
                                    text("Everything is running well", {.font = {.size = size}})));
        }
        for (const char* digits : {"111.11 %", "888.88 %"}) {
            rows.push_back(labelled(
                "digits", row(these(text(digits, {.font = {.size = 13}}),
                                    text(digits, {.font = {.size = 13, .monospacedDigits = true}})))));
        }
        return column(std::move(rows), 8);
    });
}

DisplayList paragraphs(Stage& stage) {
    return pictureOf(stage, [] {
        const Font font{.size = 12};
        return column(
            these(row(these(paragraph("leading", {.font = font}),
                            paragraph("center", {.font = font, .alignment = TextAlignment::center}),
                            paragraph("trailing", {.font = font, .alignment = TextAlignment::trailing}))),
                  row(these(paragraph("6 points between lines", {.font = font, .lineSpacing = 6}),
                            paragraph("two lines at most", {.font = font, .lineLimit = 2}),
                            paragraph("one line at most", {.font = font, .lineLimit = 1})))));
    });
}

}  // namespace norvane::gallery
