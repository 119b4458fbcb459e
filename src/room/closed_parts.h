// Which triangles of a mesh are on closed parts: surfaces all around a space, with their faces outwards, as those
// of a box. From outside, the back faces of a closed part are always hidden by its front faces.
//
// Vertices at one place count as one, so a part may be cut into charts. Any thread.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

// `positions` has 3 floats a vertex, `indices` 3 vertices a triangle. Returns a value for each triangle. One
// without an area is on no closed part, and opens none.
[[nodiscard]] std::vector<bool> FindClosedParts(std::span<const float> positions,
                                                std::span<const uint16_t> indices);
