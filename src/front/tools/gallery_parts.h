// What the pages of the gallery are made of: labels, controls in a given state, painted samples.
#pragma once

#include "gui/control.h"
#include "gui/styles.h"

#include <functional>
#include <string>
#include <string_view>

class CGhostButton;
class CGhostCheckBox;

// A window of a page's own painting. It goes with its parent.
class GalleryCanvas : public CGhostGUIHandler, public CGhostGUICommonFunc {
public:
    using Paint = std::function<void(CGhostSurface&)>;
    GalleryCanvas(GHOSTMANAGER_WINDOW* parent, const GUI_RECT& place, Paint painter);

    void Destroy() override { delete this; }
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~GalleryCanvas() override = default;

private:
    Paint paint;
};

// Text in a style of the theme.
void GalleryText(GHOSTMANAGER_WINDOW* parent, const std::wstring& style, std::wstring_view text,
                 const GUI_RECT& place);
// A small line, as wide as it is, that says what is below it.
void GalleryLabel(GHOSTMANAGER_WINDOW* parent, std::wstring_view text, int32_t x, int32_t y);
// The page's title, at its top.
void GalleryTitle(GHOSTMANAGER_WINDOW* parent, std::wstring_view text);
// A window of a style; its client area is the parent of what lies in it.
GHOSTMANAGER_WINDOW* GalleryWindow(GHOSTMANAGER_WINDOW* parent, const std::wstring& style,
                                   std::wstring_view caption, uint32_t flags,
                                   const GUI_RECT& place);

// Where a window is on the screen.
GUI_RECT GalleryScreenRect(const GHOSTMANAGER_WINDOW* window);

enum class GalleryState { kNormal, kHot, kPressed, kDisabled, kFocused };
CGhostButton* GalleryButton(GHOSTMANAGER_WINDOW* parent, const std::wstring& style,
                            std::wstring_view caption, GalleryState state, const GUI_RECT& place);

// The columns of the states, beside the names of the styles.
inline constexpr int32_t kGalleryColumnWide = 196;
constexpr int32_t GalleryColumnX(size_t column) {
    constexpr int32_t kFirst = 208;
    constexpr int32_t kStep = 212;
    return kFirst + static_cast<int32_t>(column) * kStep;
}

// A drop list with one entry chosen.
class CGhostDropList;
CGhostDropList* GalleryDropList(GHOSTMANAGER_WINDOW* parent, std::wstring_view text,
                                const GUI_RECT& place);

// Does to a control what the mouse would, and again after each tick: a control lets go of what is pressed but
// not captured. The cursor stays as it is.
void GalleryHold(CGhostGUIHandler& control, std::function<void()> hold);
