// What drawing the room costs: counted by a frame, for tests and measurements.
#pragma once

#include <cstdint>

struct ROOM_COUNTERS {
    uint32_t drawCalls = 0;
    uint32_t triangles = 0;
    uint32_t objectsOutOfView = 0; // parts of models that were not drawn
    uint32_t programChanges = 0;
    uint32_t uniformWrites = 0;
    uint32_t textureBinds = 0;
    uint32_t materialWrites = 0;
    uint32_t matrixLoads = 0;
    uint64_t bytesUploaded = 0; // textures and vertices that the room itself uploads
};
