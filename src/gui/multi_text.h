// CGhostMultiText: wrapped text to read, with a scrollbar where it is longer than its window.
//
// Keys: up, down, page up and down, home, end. It is a tab stop while there is something to scroll.
#pragma once

#include "gui/control.h"
#include "gui/styles.h"
#include "gui/wrap.h"

class CGhostWindowEx;

class CGhostMultiText : public CGhostGUIHandlerEx {
public:
    CGhostMultiText(GHOSTMANAGER_WINDOW* parent, uint32_t creationId, const std::wstring& style,
                    const std::wstring& caption, const GUI_PLACE& place);

    void SetText(const std::wstring& wanted); // scrolls back to its start
    [[nodiscard]] const std::wstring& Text() const { return text; }
    // Of the text as it is laid out, with its margins and frame; in units.
    [[nodiscard]] int32_t ContentWidth() const { return layout.width + Around().width; }
    [[nodiscard]] int32_t ContentHeight() const { return layout.Height() + Around().height; }
    // The height that it would have in a window of that width.
    [[nodiscard]] int32_t HeightAt(int32_t outerWidth) const;
    [[nodiscard]] int32_t WidthAt(int32_t outerWidth) const; // likewise
    [[nodiscard]] int32_t LineCount() const { return static_cast<int32_t>(layout.lines.size()); }
    [[nodiscard]] int32_t ScrollPixels() const { return scrollPixels; }
    void ScrollTo(int32_t pixels);

    void Destroy() override { delete this; }
    void OnFocus(bool gained, void* other) override;
    void OnResize(int outerWidth, int outerHeight, int clientWidth, int clientHeight) override;
    void OnKeyDown(GHOSTGUIKey key) override;
    bool OnNavigate(GUI_DIRECTION direction) override;
    bool OnActivateKey() override { return true; }
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~CGhostMultiText() override = default;

private:
    struct SIZE {
        int32_t width;
        int32_t height;
    };
    [[nodiscard]] SIZE Around() const; // margins and frame
    void Lay();

    CGhostWindowEx* frame = nullptr; // whose chain this is the second of
    std::wstring text;
    GhostTextStyle style;
    GUI_TEXT_LAYOUT layout;
    int32_t width = 0; // of the client area
    int32_t height = 0;
    int32_t scrollPixels = 0;
    bool scrollable = false;
    bool laying = false; // the bar that comes or goes calls OnResize
    bool focused = false;
};
