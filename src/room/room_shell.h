// RoomShell: the room itself: floor, ceiling, four walls and two pictures on one of them.
//
// Order: Start once the painter has started; then, within a scene, Draw before the furniture and DrawPictures.
// Thread: main.
#pragma once

#include "display/texture.h"
#include "room/room_painter.h"

class RoomShell {
public:
    void Start(RoomPainter& painter);
    void Draw(RoomPainter& painter) const;
    void DrawPictures(RoomPainter& painter) const;

private:
    void DrawQuads(RoomPainter& painter, size_t first, size_t count) const;

    VERTEX_ARRAYS arrays;
    uint32_t indexBuffer = 0;
    TEXTURE_RECORD floor{};
    TEXTURE_RECORD leftPicture{};
    TEXTURE_RECORD rightPicture{};
};
