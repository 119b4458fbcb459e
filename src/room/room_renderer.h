// RoomRenderer: draws the room: the box with its pictures, the furniture, the lamp, the logo, and the
// lights that lamp and televisions cast.
//
// The program lights the scene if the driver has shaders and the setting `app_lighting` is on; otherwise
// the fixed pipeline draws the same surfaces evenly bright. `app_anisotropicfiltering` and
// `emu_gameroomfilter` choose filters.
//
// Order: InitRoom after GlStart; then LoadModel for the furniture and Draw once a picture; Release while the
//   context is current. After a lost context, Release and InitRoom: furniture that was loaded serves on.
// Failure: what is missing or damaged is left out; damage is reported, and the spare file taken if there is one.
// Owner: textures and buffers are the renderer's. Thread: main.
#pragma once

#include "room/cover_view_draw.h"
#include "room/model_3ds.h"
#include "room/room_painter.h"
#include "room/room_shell.h"

#include <cstdint>
#include <memory>
#include <string_view>

class CRoomObjects;
struct CRoomObject;

// What Draw shows, and from where.
struct ROOM_SCENE {
    uint32_t screenWidth = 0; // pixels
    uint32_t screenHeight = 0;
    MATRIX4 projection{};
    MATRIX4 view{};
    bool ceilingLight = true;
};

class RoomRenderer {
public:
    RoomRenderer() = default;
    ~RoomRenderer() { Release(); }
    RoomRenderer(const RoomRenderer&) = delete;
    RoomRenderer& operator=(const RoomRenderer&) = delete;

    void InitRoom(const ROOM_SERVICES& roomServices);
    void Release();

    // Null if the file is missing, or damaged without a spare.
    [[nodiscard]] std::unique_ptr<Model_3DS> LoadModel(std::string_view file);

    // Clears the back buffer, draws the scene and leaves Ortho2D.
    void Draw(const ROOM_SCENE& scene, CRoomObjects& objects);

    // The images of the cover view, and its drawing: cover_view_draw.h.
    void SetCover(size_t slot, const uint32_t* pixels, uint32_t width, uint32_t height) {
        covers.SetCover(slot, pixels, width, height);
    }
    void DrawCovers(const CoverView& view, const COVER_RECTANGLE& at, const COVER_RECTANGLE& seen,
                    uint32_t screenWidth, uint32_t screenHeight) {
        covers.Draw(painter, view, at, seen, screenWidth, screenHeight);
    }

    [[nodiscard]] RoomPainter& Painter() { return painter; }
    // Of the last scene of the room.
    [[nodiscard]] const ROOM_COUNTERS& Counters() const { return counters; }

private:
    void SetLights(const ROOM_SCENE& scene, CRoomObjects& objects);
    void DrawObject(CRoomObject& object);
    void DrawModel(const std::unique_ptr<Model_3DS>& model, const MATRIX4& transform);

    ROOM_SERVICES services;
    RoomPainter painter;
    RoomShell shell;
    CoverViewDrawing covers;
    std::unique_ptr<Model_3DS> lightFixture;
    std::unique_ptr<Model_3DS> logo;
    ROOM_COUNTERS counters;
};

// A view in depth for this part of the back buffer, in pixels from its lower left.
void Perspective(int32_t x, int32_t y, int32_t width, int32_t height);
