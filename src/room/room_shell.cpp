#include "room/room_shell.h"

#include "room/room_objects.h"
#include "room/transform.h"

#include <array>

namespace {

constexpr float kW = kRoomWidth;
constexpr float kH = kRoomHeight;
constexpr float kD = kRoomDepth;
constexpr float kPictureX = kRoomWidth - 1.0f; // just off the wall
constexpr float kPictureLow = 120.0f;
constexpr float kPictureHigh = 250.0f;
constexpr float kLeftPicture = 150.0f;  // z
constexpr float kRightPicture = 550.0f; // z
constexpr float kPictureWidth = 100.0f;

constexpr size_t kQuads = 8; // floor, ceiling, four walls, two pictures
constexpr size_t kCorners = 4;
constexpr size_t kIndicesPerQuad = 6;
enum : size_t { kFloor = 0, kPlaster = 1, kPlasterQuads = 5, kPictures = 6 };

constexpr SURFACE_MATERIAL kImageMaterial{};
constexpr SURFACE_MATERIAL kPlasterMaterial{
    {1.0f, 1.0f, 1.0f},
    {0.1f, 0.1f, 0.1f},
    0.0f, 0.0f
};

using POSITIONS = std::array<std::array<VECTOR3, kCorners>, kQuads>;

constexpr POSITIONS kPositions = {
    {
     {{{0, 0, 0}, {0, 0, kD}, {kW, 0, kD}, {kW, 0, 0}}},
     {{{0, kH, 0}, {kW, kH, 0}, {kW, kH, kD}, {0, kH, kD}}},
     {{{0, 0, 0}, {0, kH, 0}, {0, kH, kD}, {0, 0, kD}}},
     {{{kW, 0, 0}, {kW, 0, kD}, {kW, kH, kD}, {kW, kH, 0}}},
     {{{0, 0, 0}, {kW, 0, 0}, {kW, kH, 0}, {0, kH, 0}}},
     {{{0, 0, kD}, {0, kH, kD}, {kW, kH, kD}, {kW, 0, kD}}},
     {{{kPictureX, kPictureHigh, kLeftPicture},
          {kPictureX, kPictureHigh, kLeftPicture + kPictureWidth},
          {kPictureX, kPictureLow, kLeftPicture + kPictureWidth},
          {kPictureX, kPictureLow, kLeftPicture}}},
     {{{kPictureX, kPictureHigh, kRightPicture},
          {kPictureX, kPictureHigh, kRightPicture + kPictureWidth},
          {kPictureX, kPictureLow, kRightPicture + kPictureWidth},
          {kPictureX, kPictureLow, kRightPicture}}},
     }
};

// All face inwards.
constexpr std::array<VECTOR3, kQuads> kNormals = {
    {
     {0, 1, 0},
     {0, -1, 0},
     {1, 0, 0},
     {-1, 0, 0},
     {0, 0, 1},
     {0, 0, -1},
     {-1, 0, 0},
     {-1, 0, 0},
     }
};

using CORNER_COORDINATES = std::array<std::array<float, 2>, kCorners>;
// The image lies five times across the floor and eight times along it.
constexpr CORNER_COORDINATES kFloorCoordinates = {
    {{0, 8}, {0, 0}, {5, 0}, {5, 8}}
};
constexpr CORNER_COORDINATES kWholeImage = {
    {{0, 0}, {1, 0}, {1, 1}, {0, 1}}
};

constexpr size_t kVertices = kQuads * kCorners;

// Positions, normals and texture coordinates, array after array.
struct SHELL_VERTICES {
    std::array<VECTOR3, kVertices> positions{};
    std::array<VECTOR3, kVertices> normals{};
    std::array<std::array<float, 2>, kVertices> texCoords{};
};

constexpr SHELL_VERTICES MakeVertices() {
    SHELL_VERTICES made;
    for (size_t quad = 0; quad < kQuads; ++quad) {
        for (size_t corner = 0; corner < kCorners; ++corner) {
            const size_t i = quad * kCorners + corner;
            made.positions[i] = kPositions[quad][corner];
            made.normals[i] = kNormals[quad];
            made.texCoords[i] = (quad == kFloor ? kFloorCoordinates : kWholeImage)[corner];
        }
    }
    return made;
}

constexpr SHELL_VERTICES kShellVertices = MakeVertices();

constexpr std::array<uint16_t, kQuads * kIndicesPerQuad> MakeIndices() {
    constexpr std::array<uint16_t, kIndicesPerQuad> kOfQuad{0, 1, 2, 0, 2, 3};
    std::array<uint16_t, kQuads * kIndicesPerQuad> made{};
    for (size_t i = 0; i < made.size(); ++i) {
        made[i] =
            static_cast<uint16_t>(i / kIndicesPerQuad * kCorners + kOfQuad[i % kIndicesPerQuad]);
    }
    return made;
}

constexpr auto kShellIndices = MakeIndices();

} // namespace

void RoomShell::Start(RoomPainter& painter) {
    floor = painter.Textures().Get(".\\objects\\floor2.jpg");
    leftPicture = painter.Textures().Get(".\\objects\\genesisad.jpg");
    rightPicture = painter.Textures().Get(".\\objects\\thewizard.jpg");
    indexBuffer = painter.MakeIndexBuffer(kShellIndices.data(), sizeof kShellIndices);
    arrays = {painter.MakeVertexBuffer(&kShellVertices, sizeof kShellVertices),
              kShellVertices.positions.data(), kShellVertices.normals.data(),
              kShellVertices.texCoords.data()};
    if (arrays.buffer != 0) {
        arrays.positions = nullptr;
        arrays.normals = BufferOffset(offsetof(SHELL_VERTICES, normals));
        arrays.texCoords = BufferOffset(offsetof(SHELL_VERTICES, texCoords));
    }
}

void RoomShell::DrawQuads(RoomPainter& painter, size_t first, size_t count) const {
    const size_t skipped = first * kIndicesPerQuad;
    const void* const indices = indexBuffer != 0
                                    ? BufferOffset(skipped * sizeof(uint16_t))
                                    : static_cast<const void*>(kShellIndices.data() + skipped);
    painter.DrawTriangles(indexBuffer, indices, static_cast<int32_t>(count * kIndicesPerQuad));
}

void RoomShell::Draw(RoomPainter& painter) const {
    painter.SetTransform(kIdentity);
    painter.SetArrays(arrays);
    painter.SetMaterial(kImageMaterial);
    painter.BindTexture(&floor);
    DrawQuads(painter, kFloor, 1);
    painter.SetMaterial(kPlasterMaterial);
    painter.BindTexture(nullptr);
    DrawQuads(painter, kPlaster, kPlasterQuads);
}

void RoomShell::DrawPictures(RoomPainter& painter) const {
    painter.SetTransform(kIdentity);
    painter.SetArrays(arrays);
    painter.SetMaterial(kImageMaterial);
    painter.BindTexture(&leftPicture);
    DrawQuads(painter, kPictures, 1);
    painter.SetMaterial(kImageMaterial);
    painter.BindTexture(&rightPicture);
    DrawQuads(painter, kPictures + 1, 1);
}
