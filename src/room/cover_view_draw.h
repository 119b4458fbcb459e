// CoverViewDrawing: draws the scene of game boxes (CoverView) inside a rectangle of the window.
//
// A cover lies in one of six textures of 2048 by 1024, made when first needed, and on the first material of
// its kind's box; a box without one keeps the box's own image.
//
// Order: Start once the painter has started; SetCover for each chosen game's image; Draw after the window that
//   the scene lies in, in Ortho2D, which is left as it was. End while the context is current. Images do not
//   outlive a Start.
// Failure: a model that is missing is not drawn. Thread: main.
#pragma once

#include "room/cover_view.h"
#include "room/model_3ds.h"
#include "room/room_painter.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

// In pixels of the window, from its top left.
struct COVER_RECTANGLE {
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;
};

class CoverViewDrawing {
public:
    using ModelLoader = std::function<std::unique_ptr<Model_3DS>(std::string_view file)>;

    CoverViewDrawing() = default;
    ~CoverViewDrawing() { End(); }
    CoverViewDrawing(const CoverViewDrawing&) = delete;
    CoverViewDrawing& operator=(const CoverViewDrawing&) = delete;

    void Start(const ModelLoader& load);
    void End();

    // The image of a slot's box: 32-bit pixels, packed rows. One larger than the texture is reduced to it.
    // Null or a side of 0 takes the image away.
    void SetCover(size_t slot, const uint32_t* pixels, uint32_t width, uint32_t height);

    void Draw(RoomPainter& painter, const CoverView& view, const COVER_RECTANGLE& at,
              uint32_t screenWidth, uint32_t screenHeight);

private:
    // A box model with the image that its file names.
    struct BOX {
        std::unique_ptr<Model_3DS> model;
        TEXTURE_RECORD own{};
        bool ownTextured = false;
    };

    void DrawBox(RoomPainter& painter, const CoverView::SLOT& slot, size_t index);

    std::array<TEXTURE_RECORD, kMostCovers> covers{};
    std::array<bool, kMostCovers> hasCover{};
    std::array<BOX, kBoxSizes.size()> boxes;
    std::unique_ptr<Model_3DS> cabinet;
};
