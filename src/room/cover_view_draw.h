// CoverViewDrawing: draws the scene of game boxes (CoverView) inside a rectangle of the window.
//
// A cover lies in one of six textures of 2048 by 1024, made when first needed, and on the first material of
// its kind's box; a box without one keeps the box's own image.
//
// Order: Start once the painter has started; SetCover for each chosen game's image; Draw after the window that
//   the scene lies in, in Ortho2D, which is left as it was. End while the context is current. Images outlive
//   End and Start.
// Failure: a model that is missing is not drawn. Thread: main.
#pragma once

#include "room/cover_view.h"
#include "room/model_3ds.h"
#include "room/room_painter.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

// In pixels of the window, from its top left.
struct COVER_RECTANGLE {
    int32_t x = 0;
    int32_t y = 0;
    int32_t width = 0;
    int32_t height = 0;
};

// An image of a game's box: its picture, and its kind of box (kBoxSizes), or kNoCover.
struct COVER_IMAGE {
    std::span<const uint32_t> pixels; // blue lowest, green, red, alpha; packed rows
    uint32_t width = 0;
    uint32_t height = 0;
    int kind = kNoCover;
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

    // Nothing outside `seen`, a part of the rectangle, is drawn.
    void Draw(RoomPainter& painter, const CoverView& view, const COVER_RECTANGLE& at,
              const COVER_RECTANGLE& seen, uint32_t screenWidth, uint32_t screenHeight);

private:
    // A box model with the image that its file names.
    struct BOX {
        std::unique_ptr<Model_3DS> model;
        TEXTURE_RECORD own{};
        bool ownTextured = false;
    };

    struct COVER {
        TEXTURE_RECORD texture{};
        std::vector<uint32_t> pixels; // empty without an image
        uint32_t width = 0;
        uint32_t height = 0;
        bool uploaded = false;
    };

    [[nodiscard]] bool Upload(COVER& cover) const;
    void DrawBox(RoomPainter& painter, const CoverView::SLOT& slot, size_t index);

    std::array<COVER, kMostCovers> covers;
    std::array<BOX, kBoxSizes.size()> boxes;
    std::unique_ptr<Model_3DS> cabinet;
};
