// KeyLine: one line of keys with what they do, each key as a small cap: [Arrow keys] move  [A] 1  [S] 2.
//
// It only shows, and takes no mouse and no focus. What does not fit is left out, by whole keys.
// Styles: KEYCAP for the keys, KEYTEXT for the words.
#pragma once

#include "gui/control.h"
#include "gui/styles.h"

#include <string>
#include <vector>

// Several keys that do one thing, such as four directions, or left and right of a pair.
struct KEY_WORDS {
    std::vector<std::wstring> keys; // empty: words alone
    std::wstring does;              // empty: the next keys follow closely
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
    [[nodiscard]] int32_t CapWidth(const std::wstring& key) const;
    [[nodiscard]] int32_t WidthOf(const KEY_WORDS& group) const;

    std::vector<KEY_WORDS> words;
    GhostTextStyle cap;
    GhostTextStyle text;
};
