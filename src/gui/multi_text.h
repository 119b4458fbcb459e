// CGhostMultiText: wrapped text to read, with a scrollbar where it is longer than its window.
//
// Keys: up, down, page up and down, home, end. It is a tab stop while there is something to scroll.
// A tab is shown as a space, other control characters than the line feed are not shown.
#pragma once

#include "gui/scrolled_area.h"
#include "gui/styles.h"
#include "gui/wrap.h"

class CGhostMultiText : public CGhostScrolledArea {
public:
    CGhostMultiText(GHOSTMANAGER_WINDOW* parent, uint32_t creationId, const std::wstring& style,
                    const std::wstring& caption, const GUI_PLACE& place);

    void SetStyle(const std::wstring& name);  // its border becomes the frame
    void SetText(const std::wstring& wanted); // scrolls back to its start
    [[nodiscard]] const std::wstring& Text() const { return text; }
    // Of the text as it is laid out, with its margins and frame; in units.
    [[nodiscard]] int32_t ContentWidth() const { return layout.width + Around().width; }
    [[nodiscard]] int32_t ContentHeight() const { return layout.Height() + Around().height; }
    // The height that it would have in a window of that width.
    [[nodiscard]] int32_t HeightAt(int32_t outerWidth) const;
    [[nodiscard]] int32_t WidthAt(int32_t outerWidth) const; // likewise
    [[nodiscard]] int32_t LineCount() const { return static_cast<int32_t>(layout.lines.size()); }

    void Destroy() override { delete this; }
    bool OnActivateKey() override { return true; }
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~CGhostMultiText() override = default;

    void Lay() override;

private:
    struct SIZE {
        int32_t width;
        int32_t height;
    };
    [[nodiscard]] SIZE Around() const; // margins and frame

    std::wstring text;
    std::wstring shown; // the text as it is laid out
    GhostTextStyle style;
    GUI_TEXT_LAYOUT layout;
    bool laying = false; // the bar that comes or goes calls OnResize
};
