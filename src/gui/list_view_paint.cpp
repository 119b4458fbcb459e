// How the table is painted: the rows that are seen, cell by cell.
#include "gui/font.h"
#include "gui/list_view.h"
#include "gui/surface.h"
#include "gui/text.h"

GUI_RECT CGhostListView::CellPlace(int32_t row, int32_t column) const {
    if (row < 0 || row >= rowCount || column < 0 || column >= ColumnCount()) {
        return {};
    }
    const int64_t y = int64_t{row} * rowHeight - scrollPixels;
    if (y >= Page()) {
        return {};
    }
    return Intersection({ColumnX(column), style.headerHeight + static_cast<int32_t>(y),
                         ColumnWidth(column), rowHeight},
                        {0, style.headerHeight, width, Page()});
}

const GhostTextStyle& CGhostListView::CellStyle(const GHOSTLISTVIEW_ITEM& cell, int32_t row) const {
    const GhostListStyle& list = style.list;
    const bool second = cell.colourSet != 0;
    if ((cell.flags & GHOSTLISTVIEW_ITEM::kSelected) != 0) {
        return second ? list.item2Selected : list.itemSelected;
    }
    if (row == hot) {
        return second ? list.item2Hot : list.itemHot;
    }
    return second ? list.item2Normal : list.itemNormal;
}

// The text begins after the image; both begin after the indent.
void CGhostListView::PaintCell(CGhostSurface& surface, int32_t row, int32_t column,
                               const GUI_RECT& place) {
    const GHOSTLISTVIEW_ITEM& cell = *Cell(row, column);
    const GhostTextStyle& look = CellStyle(cell, row);
    PaintFill(surface, look.bg, place);
    const int32_t side = ListImageSide(style.list.imageList);
    int32_t x = cell.indent * side;
    // Cut to the column alone: a row that is partly seen keeps its place.
    surface.PushOrigin({place.x, 0, place.width, surface.Height()});
    if (side > 0 && cell.image >= 0) {
        PaintListImage(surface, style.list.imageList, cell.image, x,
                       place.y + (place.height - side) / 2);
        x += side;
    }
    if (!cell.text.empty()) {
        const uint32_t align = columns[static_cast<size_t>(column)].align;
        const GUI_EDGES& margin = look.textRect;
        DrawText(surface, look.font, cell.text, look.textColour, look.textOutlineColour,
                 align != 0 ? align : look.align,
                 {x + margin.left, place.y + margin.top,
                  place.width - x - margin.left - margin.right,
                  place.height - margin.top - margin.bottom},
                 look.xOffset, look.yOffset);
    }
    surface.PopOrigin();
}

void CGhostListView::PaintRow(CGhostSurface& surface, int32_t row, int32_t y) {
    int32_t x = 0;
    for (int32_t column = 0; column < ColumnCount() && x < width; ++column) {
        const int32_t wide = ColumnWidth(column);
        PaintCell(surface, row, column, {x, y, wide, rowHeight});
        x += wide;
    }
    // The row goes on beside its last column.
    if (x < width && ColumnCount() > 0) {
        PaintFill(surface, CellStyle(*Cell(row, ColumnCount() - 1), row).bg,
                  {x, y, width - x, rowHeight});
    }
}

void CGhostListView::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    constexpr size_t kMostMade = 1000; // far more than any page
    if (madeRows.size() > kMostMade) {
        madeRows.clear();
    }
    PaintFill(*surface, style.list.bg.bg, {0, 0, width, height});
    // The headings go on beside the last column, as the rows do. The right end, which parts two columns, lies
    // beyond the edge.
    const GhostTexture& heading = style.header.states[0].bg;
    const int32_t rest = ColumnX(ColumnCount());
    PaintFill(*surface, heading, {rest, 0, width - rest + heading.rect.right, style.headerHeight});
    surface->PushOrigin({0, style.headerHeight, width, Page()});
    const int32_t first = scrollPixels / rowHeight;
    for (int32_t row = first; row < rowCount && row * rowHeight - scrollPixels < Page(); ++row) {
        PaintRow(*surface, row, row * rowHeight - scrollPixels);
    }
    surface->PopOrigin();
    if (focused && aimedHeading < 0) {
        PaintFocusRing(*surface, {0, style.headerHeight, width, Page()});
    }
}
