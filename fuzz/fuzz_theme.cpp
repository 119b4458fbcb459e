// A theme of any bytes: parsed, then every record of it is looked up and painted with.
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

void Paint(CGhostSurface& surface, const GhostTextStyle& style) {
    PaintText(surface, style, L"text", {0, 0, surface.Width(), surface.Height()});
    PaintFill(surface, style.bg2, {-7, 3, 40, 9});
    PaintFrame(surface, style.border);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    CGhostTheme theme;
    theme.ParseTheme({reinterpret_cast<const char*>(data), size});
    CGhostSurface surface;
    if (!surface.Create({3, 5, 64, 40}, 1.5)) {
        return 0;
    }
    for (const CGhostTheme::NAMED& named : theme.Names()) {
        GhostTextStyle text;
        GhostListViewStyle view;
        GhostScrollbarStyle bar;
        GhostBorderStyle border;
        if (theme.GetStyle(named.name, text)) {
            Paint(surface, text);
        }
        if (theme.GetStyle(named.name, view)) {
            Paint(surface, view.list.itemHot);
        }
        if (theme.GetStyle(named.name, bar)) {
            Paint(surface, bar.verMid.states[2]);
        }
        if (theme.GetStyle(named.name, border)) {
            PaintFrame(surface, border);
        }
    }
    return 0;
}
