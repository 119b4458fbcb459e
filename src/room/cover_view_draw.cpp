#include "room/cover_view_draw.h"

#include "display/gl.h"
#include "room/room_renderer.h"
#include "room/transform.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#include <algorithm>
#include <vector>

namespace {

constexpr uint32_t kCoverWidth = 2048;
constexpr uint32_t kCoverHeight = 1024;
constexpr VECTOR3 kLampOffset{20.0f, 35.0f, 120.0f}; // from the middle of what is shown
constexpr std::array<const char*, kBoxSizes.size()> kBoxFiles{"smsbox.3ds", "ggbox.3ds"};

TEXTURE_RECORD MakeCoverTexture() {
    TEXTURE_RECORD record{};
    record.width = std::min(kCoverWidth, Gl().largestTexture);
    record.height = std::min(kCoverHeight, Gl().largestTexture);
    if (CreateTexture(record, true)) {
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    }
    return record;
}

// An upload has several writes, and each would make all smaller levels again. One more write, of the first
// texel, makes them once.
bool UploadWithLevels(const TEXTURE_RECORD& record, const uint32_t* pixels) {
    glBindTexture(GL_TEXTURE_2D, record.glTexture);
    glTexParameteri(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, GL_FALSE);
    if (!UploadTexture(record, pixels, record.width, record.height, record.width)) {
        return false;
    }
    if (record.mipmapped != 0) {
        glTexParameteri(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, GL_TRUE);
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 1, 1, GL_BGRA, GL_UNSIGNED_BYTE, pixels);
    }
    return true;
}

// The pixels in a size that fits; empty if there is no memory for them.
std::vector<uint32_t> Reduced(const uint32_t* pixels, uint32_t width, uint32_t height,
                              uint32_t newWidth, uint32_t newHeight) {
    std::vector<uint32_t> reduced(size_t{newWidth} * newHeight);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    const GLint failure =
        gluScaleImage(GL_BGRA, static_cast<GLsizei>(width), static_cast<GLsizei>(height),
                      GL_UNSIGNED_BYTE, pixels, static_cast<GLsizei>(newWidth),
                      static_cast<GLsizei>(newHeight), GL_UNSIGNED_BYTE, reduced.data());
    return failure == 0 ? reduced : std::vector<uint32_t>();
}

} // namespace

void CoverViewDrawing::Start(const ModelLoader& load) {
    End();
    for (size_t kind = 0; kind < boxes.size(); ++kind) {
        BOX& box = boxes[kind];
        box.model = load(kBoxFiles[kind]);
        if (box.model != nullptr && !box.model->materials.empty()) {
            box.own = box.model->materials[0].texture;
            box.ownTextured = box.model->materials[0].textured;
        }
    }
    cabinet = load("arcade.3ds");
}

void CoverViewDrawing::End() {
    for (COVER& cover : covers) {
        DestroyTexture(cover.texture);
        cover.uploaded = false;
    }
    boxes = {};
    cabinet.reset();
}

void CoverViewDrawing::SetCover(size_t slot, const uint32_t* pixels, uint32_t width,
                                uint32_t height) {
    COVER& cover = covers.at(slot);
    cover.uploaded = false;
    cover.pixels.clear();
    if (pixels != nullptr && width != 0 && height != 0) {
        cover.width = width;
        cover.height = height;
        cover.pixels.assign(pixels, pixels + size_t{width} * height);
    }
}

// When it is first drawn.
bool CoverViewDrawing::Upload(COVER& cover) const {
    if (cover.uploaded || cover.pixels.empty()) {
        return cover.uploaded;
    }
    if (cover.texture.glTexture == 0) {
        cover.texture = MakeCoverTexture();
    }
    if (cover.texture.glTexture == 0) {
        return false;
    }
    TEXTURE_RECORD& texture = cover.texture;
    texture.width = std::min(cover.width, texture.texWidth);
    texture.height = std::min(cover.height, texture.texHeight);
    const uint32_t* pixels = cover.pixels.data();
    std::vector<uint32_t> reduced;
    if (texture.width != cover.width || texture.height != cover.height) {
        reduced = Reduced(pixels, cover.width, cover.height, texture.width, texture.height);
        pixels = reduced.empty() ? nullptr : reduced.data();
    }
    cover.uploaded = pixels != nullptr && UploadWithLevels(texture, pixels);
    return cover.uploaded;
}

void CoverViewDrawing::DrawBox(RoomPainter& painter, const CoverView::SLOT& slot, size_t index) {
    if (slot.kind < 0 || static_cast<size_t>(slot.kind) >= boxes.size()) {
        return;
    }
    BOX& box = boxes[static_cast<size_t>(slot.kind)];
    if (box.model == nullptr || box.model->materials.empty()) {
        return;
    }
    Model_3DS::Material& front = box.model->materials[0];
    const bool hasCover = Upload(covers[index]);
    front.texture = hasCover ? covers[index].texture : box.own;
    front.textured = hasCover || box.ownTextured;
    painter.SetTransform(
        Multiply(Translation(CoverView::PlaceOf(index)), RotationAboutY(slot.turn)));
    box.model->Draw(painter);
}

void CoverViewDrawing::Draw(RoomPainter& painter, const CoverView& view, const COVER_RECTANGLE& at,
                            const COVER_RECTANGLE& seen, uint32_t screenWidth,
                            uint32_t screenHeight) {
    if (at.width <= 0 || at.height <= 0 || seen.width <= 0 || seen.height <= 0) {
        return;
    }
    // OpenGL counts rows from the bottom.
    const auto bottomOf = [&](const COVER_RECTANGLE& rectangle) {
        return static_cast<int32_t>(screenHeight) - rectangle.y - rectangle.height;
    };
    Perspective(at.x, bottomOf(at), at.width, at.height);
    glScissor(seen.x, bottomOf(seen), seen.width, seen.height);
    glEnable(GL_SCISSOR_TEST);
    glClear(GL_DEPTH_BUFFER_BIT);

    LightProgram& program = painter.Program();
    program.ClearLights();
    program.SetLamp(0, view.Middle() + kLampOffset);
    painter.BeginScene(view.Camera().Projection(), view.Camera().View());
    for (size_t i = 0; i < kMostCovers; ++i) {
        DrawBox(painter, view.Slots()[i], i);
    }
    if (view.HasCabinet() && cabinet != nullptr) {
        painter.SetTransform(Multiply(Translation(CoverView::kCabinetPlace),
                                      RotationAboutY(CoverView::kCabinetTurn)));
        cabinet->Draw(painter);
    }
    painter.EndScene();
    glDisable(GL_TEXTURE_2D);
    Ortho2D(screenWidth, screenHeight);
}
