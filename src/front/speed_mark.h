// SpeedMark: a small mark in the upper right corner while a game runs faster than it should, or backwards: two arrows
// and the factor.
//
// It is a window of the toolkit, in the program's fonts, and takes neither mouse nor focus. The appearance is loaded
// before it is made.
#pragma once

#include <cstdint>
#include <string>

class CGhostTextBox;
class SpeedMarkFace;

class SpeedMark {
public:
    SpeedMark();
    ~SpeedMark();
    SpeedMark(const SpeedMark&) = delete;
    SpeedMark& operator=(const SpeedMark&) = delete;

    // Times the ordinary speed; below 0: backwards. 0 and 1 hide the mark.
    void Show(int32_t speed);
    [[nodiscard]] bool Visible() const { return shown != 0 && shown != 1; }
    [[nodiscard]] const std::wstring&
    Factor() const; // "4x"; empty at the ordinary speed, backwards

private:
    void Place();

    CGhostTextBox* back;
    SpeedMarkFace* face;
    int32_t shown = 0;
    int32_t screenWidth = 0; // units, that the mark was placed for
};
