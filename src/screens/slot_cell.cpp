#include "screens/slot_cell.h"

#include "gui/control_input.h"
#include "gui/manager.h"
#include "gui/ring.h"
#include "gui/surface.h"
#include "gui/text.h"
#include "gui/theme.h"
#include "host/state_slots.h"
#include "screens/played_text.h"

#include <algorithm>
#include <cmath>

namespace {

// Units, within the cell.
constexpr int32_t kMargin = 8;
constexpr GUI_RECT kPicture{kMargin, kMargin, 200, 150};
constexpr GUI_RECT kFirstLine{kMargin, 162, 200, 22};
constexpr GUI_RECT kSecondLine{kMargin, 184, 200, 20};

constexpr int32_t kCorner = 4;

enum Face : size_t { kNormal = 0, kHot = 1, kChosen = 2 };

void DrawStyled(CGhostSurface& surface, const GhostTextStyle& style, const std::wstring& text,
                const GUI_RECT& rect) {
    PaintText(surface, style, text, rect);
}

// The largest place of this shape in the picture's.
GUI_RECT PlaceOf(float aspect) {
    const auto whole = static_cast<float>(kPicture.width);
    const auto high = static_cast<float>(kPicture.height);
    const float width = std::min(whole, high * aspect);
    const auto w = std::max(1, static_cast<int32_t>(std::lround(width)));
    const auto h = std::max(1, static_cast<int32_t>(std::lround(width / aspect)));
    return {kPicture.x + (kPicture.width - w) / 2, kPicture.y + (kPicture.height - h) / 2, w, h};
}

// Every pixel becomes a square of several, so that the size can then be reduced to any other without pixels of
// different widths.
std::vector<uint32_t> Enlarged(const GUI_BITMAP& from, int32_t times) {
    std::vector<uint32_t> pixels;
    pixels.reserve(from.pixels.size() * static_cast<size_t>(times) * static_cast<size_t>(times));
    for (int32_t y = 0; y < from.pixelHeight * times; ++y) {
        const uint32_t* const row =
            from.pixels.data() + static_cast<ptrdiff_t>(y / times) * from.pixelWidth;
        for (int32_t x = 0; x < from.pixelWidth * times; ++x) {
            pixels.push_back(row[x / times]);
        }
    }
    return pixels;
}

} // namespace

SlotCell::SlotCell(GHOSTMANAGER_WINDOW* parent, uint32_t slotNumber, const GUI_PLACE& place)
    : slot(slotNumber)
    , instead(L"Empty") {
    window = MakeControlWindow(parent, 0, this, place);
    const CGhostTheme& theme = CGhostTheme::Get();
    theme.GetStyle(L"SLOTCELL", face);
    theme.GetStyle(L"SLOT_NUMBER", numberStyle);
    theme.GetStyle(L"SLOT_DATE", dateStyle);
    theme.GetStyle(L"SLOT_PLAYED", playedStyle);
    theme.GetStyle(L"SLOT_EMPTY", emptyStyle);
    theme.GetStyle(L"SLOT_TROUBLE", troubleStyle);
    theme.GetStyle(L"SLOT_PICTURE", pictureStyle);
    CGhostManager::Get().SetTabStop(window, true);
    PlaceControl(window, place);
}

void SlotCell::Show(const SLOT_FACTS& facts) {
    const STATE_SNAPSHOT& label = facts.label;
    trouble = facts.filled && !facts.readable;
    date = facts.readable ? PlayedDate(label.takenAt) : std::wstring();
    played = facts.readable && label.secondsPlayed != 0
                 ? PlayedDuration(static_cast<int64_t>(label.secondsPlayed)) + L" played"
                 : std::wstring();
    picture = {};
    fitted = {};
    if (facts.readable && !label.picture.pixels.empty()) {
        picture.pixelWidth = static_cast<int32_t>(label.picture.width);
        picture.pixelHeight = static_cast<int32_t>(label.picture.height);
        const GUI_RECT place = PlaceOf(label.picture.aspect);
        picture.width = place.width;
        picture.height = place.height;
        picture.pixels = label.picture.pixels;
    }
    instead = !facts.filled   ? L"Empty"
              : trouble       ? L"Cannot be read"
              : !HasPicture() ? L"No picture"
                              : L"";
    dirty = true;
}

void SlotCell::SetChosen(bool wanted) {
    dirty = dirty || chosen != wanted;
    chosen = wanted;
}

void SlotCell::OnFocus(bool gained, void* /*other*/) {
    focused = gained;
    keyHeld = false;
    dirty = true;
    if (gained) {
        OnChosen(this);
    }
}

void SlotCell::OnMouseMove(int /*x*/, int /*y*/) {
    ShowCursor(kCursorHot);
    dirty = dirty || !hot;
    hot = true;
}

void SlotCell::OnMouseLeave() {
    ShowCursor(kCursorNormal);
    hot = false;
    dirty = true;
}

void SlotCell::OnMouseDoubleClick(int /*x*/, int /*y*/, unsigned button) {
    if (button == kLeftButton) {
        OnTaken(this);
    }
}

void SlotCell::OnKeyDown(GHOSTGUIKey key) {
    if (IsPressKey(key)) {
        keyHeld = true;
    } else if (key == GHOSTGUIKey::kDelete || key == GHOSTGUIKey::kBackspace) {
        OnDelete(this);
    } else {
        MoveFocusByKey(key);
    }
}

void SlotCell::OnKeyUp(GHOSTGUIKey key) {
    if (IsPressKey(key) && keyHeld) {
        keyHeld = false;
        OnTaken(this);
    }
}

bool SlotCell::OnActivateKey() {
    OnTaken(this);
    return true;
}

void SlotCell::FitPicture(double density) {
    if (fitted.density == density && !fitted.pixels.empty()) {
        return;
    }
    fitted.width = picture.width;
    fitted.height = picture.height;
    fitted.density = density;
    fitted.pixelWidth = std::max(1, PixelEdge(picture.width, density));
    fitted.pixelHeight = std::max(1, PixelEdge(picture.height, density));
    const int32_t times = std::max((fitted.pixelWidth - 1) / picture.pixelWidth,
                                   (fitted.pixelHeight - 1) / picture.pixelHeight) +
                          1;
    fitted.pixels =
        ReducePixels(Enlarged(picture, times), picture.pixelWidth * times,
                     picture.pixelHeight * times, fitted.pixelWidth, fitted.pixelHeight);
}

void SlotCell::PaintPicture(CGhostSurface& surface) {
    PaintFill(surface, pictureStyle.bg, kPicture);
    if (!instead.empty()) {
        DrawStyled(surface, trouble ? troubleStyle : emptyStyle, instead, kPicture);
    }
    if (HasPicture()) {
        FitPicture(surface.Density());
        const GUI_RECT place{kPicture.x + (kPicture.width - picture.width) / 2,
                             kPicture.y + (kPicture.height - picture.height) / 2, picture.width,
                             picture.height};
        surface.Blit(fitted, place, 0, 0);
    }
}

void SlotCell::OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) {
    const GUI_RECT whole{0, 0, clientRect.width, clientRect.height};
    const GhostTextStyle& look = face.states[chosen ? kChosen : hot ? kHot : kNormal];
    PaintFill(*surface, look.bg, whole);
    PaintPicture(*surface);
    DrawStyled(*surface, numberStyle, L"Slot " + std::to_wstring(slot), kFirstLine);
    DrawStyled(*surface, dateStyle, date, kFirstLine);
    DrawStyled(*surface, playedStyle, played, kSecondLine);
    if (focused) {
        PaintFocusRing(*surface, whole);
    }
    CutCorners(*surface, whole, kCorner);
}
