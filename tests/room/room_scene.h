// A room furnished with boxes: every file that the room reads, for tests and measurements of its drawing.
#pragma once

#include "room/model_bytes.h"

#include <map>
#include <string>

using RoomFiles = std::map<std::string, Bytes>;

// Every side of a box has `cells` by `cells` squares, and every image `side` by `side` pixels.
[[nodiscard]] RoomFiles RoomOfBoxes(uint32_t cells, uint32_t side);

// An image file that the decoder takes: PNG with stored blocks. Pixels 0xAARRGGBB, top row first.
[[nodiscard]] Bytes PngFile(uint32_t width, uint32_t height, const std::vector<uint32_t>& pixels);

// A box around the origin, every side with its own vertices and one image over all of it, upright. `front` is
// the material of the side that is at +z once loaded, and `sides` that of the others.
[[nodiscard]] MeshBytes BoxMesh(float width, float height, float depth, const std::string& sides,
                                const std::string& front, uint32_t cells = 1);
// As above with the second material on top.
[[nodiscard]] MeshBytes BoxMeshWithTop(float width, float height, float depth,
                                       const std::string& sides, const std::string& top,
                                       uint32_t cells = 1);
