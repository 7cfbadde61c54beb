#include "dashboard/MemoryDetailListView.h"

#include "dashboard/FigureCell.h"
#include "dashboard/RateRow.h"
#include "drawing/NamedFonts.h"
#include "platform/Decimal.h"
#include "views/Stack.h"

namespace norvane {

Element MemoryDetailListView::body() const {
    const FigureCell cached{
        .label = "Cached Files",
        .value = decimal(cachedFilesGB, 2) + " GB",
        .font = {.size = 12, .weight = FontWeight::medium, .design = FontDesign::monospaced},
        .dot = Paint(Ink::blue).withOpacity(0.8)};
    return vstack({.alignment = Alignment::start, .spacing = 10},  //
                  cached.body(),                                   //
                  RateRow{"Swap Read", swapReadMBps}.body(),       //
                  RateRow{"Swap Write", swapWriteMBps}.body())
        .padding({.top = 8});
}

}  // namespace norvane
