// CoverView: up to six game boxes in a small scene of their own, to be looked at from both sides.
//
// This is the scene's state: where the boxes are, how far each is turned, and where its camera is. Drawing and
// textures are the renderer's.
// Units: room units; the grid's left edge is at x 0, its boxes stand in the plane z 0. Seconds, degrees, and
// pixels of the rectangle that shows the scene, from its top left.
// Order: SetCovers when a game is chosen, SetSize when the rectangle changes, Update once a picture.
// Thread: main.
#pragma once

#include "room/room_camera.h"
#include "room/vector.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

inline constexpr size_t kMostCovers = 6;
inline constexpr int kNoCover = -1;

struct BOX_SIZE {
    float width;
    float height;
};
// By kind: a Master System box and a Game Gear box.
inline constexpr std::array<BOX_SIZE, 2> kBoxSizes = {
    {{72.0f, 103.0f}, {72.0f, 100.0f}}
};

class CoverView {
public:
    struct SLOT {
        int kind = kNoCover; // 0 or 1; a slot without a cover is not drawn
        float turn = 0.0f;   // degrees about y; 180 shows the back
        bool flipping = false;
    };

    // The chosen game's boxes, kinds of at most six; ends all flips and goes back to the overview. An unknown
    // kind counts as none. An arcade game has its cabinet beside them.
    void SetCovers(std::span<const int> kinds, bool withCabinet);
    void SetSize(uint32_t width, uint32_t height);

    // Button 1 zooms in on a box and out again, button 2 turns it round.
    void CoverClick(int button, int32_t x, int32_t y);
    // The same without a pointer: looks closer at the next box, after the last one at all of them; and turns over
    // what is looked at.
    void LookCloser();
    void TurnOver();
    // Turns a box round, as button 2 does.
    void TurnOver(size_t slot) { slots.at(slot).flipping = true; }
    // The camera leans after the pointer; the steps are cut to 3 across and 0.8 upwards.
    void Lean(float across, float up);
    void Update(float seconds);

    [[nodiscard]] const std::array<SLOT, kMostCovers>& Slots() const { return slots; }
    [[nodiscard]] static VECTOR3 PlaceOf(size_t slot);
    [[nodiscard]] bool HasCabinet() const { return cabinet; }
    static constexpr VECTOR3 kCabinetPlace{0.0f, 50.0f, -120.0f};
    static constexpr float kCabinetTurn = 30.0f;
    // The zoomed slot, or kMostCovers in the overview.
    [[nodiscard]] size_t Zoomed() const { return zoomed; }
    [[nodiscard]] const CRoomCamera& Camera() const { return camera; }
    // What the overview looks at: the middle of the rows and columns in use.
    [[nodiscard]] VECTOR3 Middle() const;

private:
    [[nodiscard]] size_t SlotAt(int32_t x, int32_t y) const;
    // From the left edge of the first to the right edge of the last, in columns.
    [[nodiscard]] std::pair<float, float> ColumnsInUse() const;
    [[nodiscard]] float RowsInUse() const;
    void PlaceCamera();

    std::array<SLOT, kMostCovers> slots;
    size_t count = 0;
    size_t zoomed = kMostCovers;
    bool cabinet = false;
    float leanAcross = 0.0f;
    float leanUp = 0.0f;
    uint32_t viewWidth = 1;
    uint32_t viewHeight = 1;
    float distance = 1.0f; // of the camera from the boxes' plane
    CRoomCamera camera;
};
