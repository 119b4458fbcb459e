#include "screens/key_line.h"

#include "gui/manager.h"
#include "gui/ring.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"

#include <algorithm>

namespace {

// Units.
constexpr int32_t kCapHeight = 22;
constexpr int32_t kCapMargin = 7;
constexpr int32_t kCapGap = 3;
constexpr int32_t kWordGap = 6;   // between a key and what it does
constexpr int32_t kGroupGap = 16; // and the next key
constexpr int32_t kCorner = 4;
constexpr int32_t kPadCorner = kCapHeight / 2;

} // namespace

KeyLine::KeyLine(GHOSTMANAGER_WINDOW* parent, uint32_t creationId) {
    window = MakeControlWindow(parent, creationId, this, {});
    CGhostManager::Get().SetTabStop(window, false);
    CGhostTheme::Get().GetStyle(L"KEYCAP", cap);
    CGhostTheme::Get().GetStyle(L"PADCAP", padCap);
    CGhostTheme::Get().GetStyle(L"KEYTEXT", text);
}

void KeyLine::SetWords(std::vector<KEY_WORDS> wanted) {
    words = std::move(wanted);
    dirty = true;
}

// A cap of one letter is a square.
int32_t KeyLine::CapWidth(const GhostTextStyle& style, const std::wstring& key) {
    return std::max(MeasureText(style.font, key).width + 2 * kCapMargin, kCapHeight);
}

// With the gap after each.
int32_t KeyLine::CapsWidth(const GhostTextStyle& style, const std::vector<std::wstring>& caps) {
    int32_t width = 0;
    for (const std::wstring& one : caps) {
        width += CapWidth(style, one) + kCapGap;
    }
    return width;
}

int32_t KeyLine::WidthOf(const KEY_WORDS& group) const {
    const int32_t width = CapsWidth(cap, group.keys) + CapsWidth(padCap, group.pads);
    if (group.does.empty()) {
        return std::max(width - kCapGap, 0);
    }
    return width + (width == 0 ? 0 : kWordGap - kCapGap) + MeasureText(text.font, group.does).width;
}

int32_t KeyLine::WantedWidth() const {
    int32_t width = 0;
    for (const KEY_WORDS& group : words) {
        width += (width == 0 ? 0 : kGroupGap) + WidthOf(group);
    }
    return width;
}

// Returns where the next cap is.
int32_t KeyLine::PaintCaps(CGhostSurface& surface, const GhostTextStyle& style,
                           const std::vector<std::wstring>& caps, int32_t corner, int32_t x) {
    const int32_t top = (surface.Height() - kCapHeight) / 2;
    for (const std::wstring& one : caps) {
        const GUI_RECT face{x, top, CapWidth(style, one), kCapHeight};
        PaintText(surface, style, one, face);
        CutCorners(surface, face, corner);
        PaintRing(surface, face, 1, corner, style.border.left.colour1);
        x += face.width + kCapGap;
    }
    return x;
}

void KeyLine::OnPaint(CGhostSurface* surface, const GUI_RECT& /*clientRect*/) {
    const int32_t width = surface->Width();
    int32_t x = 0;
    for (const KEY_WORDS& group : words) {
        const int32_t begin = x;
        const int32_t end = x + WidthOf(group);
        if (end > width) {
            return;
        }
        x = PaintCaps(*surface, cap, group.keys, kCorner, x);
        x = PaintCaps(*surface, padCap, group.pads, kPadCorner, x);
        x += x == begin ? 0 : kWordGap - kCapGap;
        PaintText(*surface, text, group.does, {x, 0, end - x, surface->Height()});
        x = end + kGroupGap;
    }
}
