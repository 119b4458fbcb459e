// RoomHints: one line at the foot of the window: what the player's hands can do at the moment.
//
// Thread: main. Order: made after the toolkit has its screen and its theme.
#pragma once

#include "screens/key_line.h"

#include <cstdint>
#include <string>
#include <vector>

class CGhostTextBox;

class RoomHints {
public:
    RoomHints();
    ~RoomHints();
    RoomHints(const RoomHints&) = delete;
    RoomHints& operator=(const RoomHints&) = delete;

    // Nothing to say hides the line.
    void Show(const std::vector<KEY_WORDS>& wanted);
    // "Esc   Walk on      F10   Main menu".
    [[nodiscard]] const std::wstring& Text() const { return text; }

private:
    void Place();

    CGhostTextBox* back;
    KeyLine* line;
    std::wstring text;
    int32_t screenWidth = 0; // units, that the line was placed for
    int32_t screenHeight = 0;
};
