// KeyLine: one line of keys with what they do, each key as a small cap: [Arrow keys] move  [A] 1  [S] 2.
//
// It only shows, and takes no mouse and no focus. What does not fit is left out, by whole keys.
// A controller's buttons are caps too, round ones, after the keys.
// Styles: KEYCAP for the keys, PADCAP for a controller's buttons, KEYTEXT for the words.
#pragma once

#include "gui/control.h"
#include "gui/styles.h"

#include <string>
#include <vector>

// Several keys that do one thing, such as four directions, or left and right of a pair.
struct KEY_WORDS {
    std::vector<std::wstring> keys;   // empty: words alone
    std::wstring does;                // empty: the next keys follow closely
    std::vector<std::wstring> pads{}; // a controller's buttons that do the same
};

class KeyLine : public CGhostGUIHandler, public CGhostGUICommonFunc {
public:
    KeyLine(GHOSTMANAGER_WINDOW* parent, uint32_t creationId);

    void SetWords(std::vector<KEY_WORDS> wanted);
    [[nodiscard]] const std::vector<KEY_WORDS>& Words() const { return words; }
    // In units, of all the words in one line.
    [[nodiscard]] int32_t WantedWidth() const;

    void Destroy() override { delete this; }
    void OnPaint(CGhostSurface* surface, const GUI_RECT& clientRect) override;

protected:
    ~KeyLine() override = default;

private:
    [[nodiscard]] static int32_t CapWidth(const GhostTextStyle& style, const std::wstring& key);
    [[nodiscard]] static int32_t CapsWidth(const GhostTextStyle& style,
                                           const std::vector<std::wstring>& caps);
    static int32_t PaintCaps(CGhostSurface& surface, const GhostTextStyle& style,
                             const std::vector<std::wstring>& caps, int32_t corner, int32_t x);
    [[nodiscard]] int32_t WidthOf(const KEY_WORDS& group) const;

    std::vector<KEY_WORDS> words;
    GhostTextStyle cap;
    GhostTextStyle padCap;
    GhostTextStyle text;
};
