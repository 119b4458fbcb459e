// CGhostDropList: one choice of a list that opens under it, or above it where there is more room.
//
// Style: a droplist record for the face and its arrow, LIST for the list.
// Keys: return and space open it; page up and down, home, end and letters change the choice while it is
//   closed, and the arrows leave it. A controller's first button opens it and chooses, the second closes it.
#pragma once

#include "gui/control.h"
#include "gui/list.h"
#include "gui/styles.h"

class CGhostButton;

class CGhostDropList : public CGhostGUIHandlerEx {
public:
    // The open list is at most `maxHeight` units high.
    CGhostDropList(GHOSTMANAGER_WINDOW* parent, uint32_t creationId, const std::wstring& style,
                   const std::wstring& caption, int32_t maxHeight, const GUI_PLACE& place);

    int32_t AddItem(const std::wstring& text, int32_t image = -1, uint32_t itemFlags = 0,
                    uint64_t value = 0);
    void Clear();                                        // the caption stays
    void SetSelected(int32_t index, bool notify = true); // and the caption with it
    [[nodiscard]] int32_t Selected() const { return list->Selected(); }
    [[nodiscard]] int32_t Count() const { return list->Count(); }
    [[nodiscard]] GHOSTLIST_ITEM* Item(int32_t index) { return list->Item(index); }
    void SetCaption(const std::wstring& text);
    [[nodiscard]] const std::wstring& Caption() const { return caption; }
    void SetStyle(const std::wstring& name); // of the face; the list stays LIST
    void SetEnabled(bool enable);
    void Open();
    void CloseList();
    [[nodiscard]] bool IsOpen() const { return open; }
    [[nodiscard]] CGhostList* List() const { return list; }
    [[nodiscard]] CGhostButton* Arrow() const { return arrow; }
    [[nodiscard]] bool ShowsRing() const { return focused && enabled; }
    [[nodiscard]] int32_t FaceWidth() const { return width; }

    GuiSignal<void(CGhostDropList*, int, GHOSTLIST_ITEM*)> OnSelect;

    void Destroy() override { delete this; }
    void OnFocus(bool gained, void* other) override;
    void OnResize(int outerWidth, int outerHeight, int clientWidth, int clientHeight) override;
    void OnMouseMove(int x, int y) override;
    void OnMouseLeave() override;
    void OnMouseDoubleClick(int x, int y, unsigned button) override;
    void OnMouseDown(int x, int y, unsigned button) override;
    void OnMouseWheel(int x, int y, bool up) override;
    void OnKeyDown(GHOSTGUIKey key) override;
    void OnChar(unsigned character) override;
    void OnTick(unsigned microseconds) override;
    bool OnActivateKey() override;
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~CGhostDropList() override = default;

private:
    void Toggle();
    [[nodiscard]] GUI_RECT ListPlace();
    void Chosen(int32_t index, GHOSTLIST_ITEM* item);
    bool SelectUsable(int32_t index, int32_t step);
    [[nodiscard]] bool IsOwnPart(const void* part) const;

    std::wstring caption;
    GhostDropListStyle style;
    CGhostButton* arrow = nullptr;
    CGhostList* list = nullptr; // its window is owned by this one's, and ends first
    GUI_RECT placedFor;         // the control's place when it opened, on the screen
    GUI_RECT screen;
    int32_t width = 0; // of the client area
    int32_t maxHeight;
    int32_t chosen = -1; // the row that the face shows
    bool open = false;
    bool enabled = true;
    bool focused = false;
    ListTypeAhead typeAhead;
};
