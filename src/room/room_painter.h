// RoomPainter: everything between the room's scene and OpenGL: the program, the textures, vertex buffers,
// and which state is set already.
//
// A setter notes what is wanted, and DrawTriangles puts it on a list. Flush draws what is listed, surfaces of
// one program together, and sends only what differs from what OpenGL has.
//
// Order: Start with a new context and after GlStart; BeginScene, then any setters, draws and Flush, EndScene.
//   Between the two nobody else draws. Release while the context is current. Start may come again, with
//   another context; models then fetch their textures and buffers anew.
// Owner: the painter frees all textures and buffers that it makes. Thread: main.
#pragma once

#include "room/light_program.h"
#include "room/room_counters.h"
#include "room/texture_cache.h"
#include "room/vector.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

struct EMU_VIDEO_FRAME;

// How the outside world serves the room.
struct ROOM_SERVICES {
    GlLoader loader;
    ObjectFileReader readFile;
    RoomReport report;               // may be empty
    ObjectFileReader readSpare = {}; // reads the file to use instead of a damaged one; may be empty
};

struct SURFACE_MATERIAL {
    std::array<float, 3> diffuse{};
    std::array<float, 3> specular{};
    float emission = 0.0f; // of all three channels
    float shininess = 0.0f;
};

// Vertex arrays: in a buffer, with offsets in place of addresses, or in memory.
struct VERTEX_ARRAYS {
    uint32_t buffer = 0;             // 0: in memory
    const void* positions = nullptr; // 3 floats a vertex, packed, as are the others
    const void* normals = nullptr;   // 3 floats; null: none
    const void* texCoords = nullptr; // 2 floats

    [[nodiscard]] bool HasNormals() const { return normals != nullptr; }
    bool operator==(const VERTEX_ARRAYS&) const = default;
};

// A place in a buffer, in the form in which OpenGL takes it.
inline const void* BufferOffset(size_t bytes) {
    return reinterpret_cast<const void*>(bytes); // NOLINT(performance-no-int-to-ptr)
}

class RoomPainter {
public:
    RoomPainter() = default;
    ~RoomPainter() { Release(); }
    RoomPainter(const RoomPainter&) = delete;
    RoomPainter& operator=(const RoomPainter&) = delete;

    // Reports a program that cannot be used; the room is drawn without it then.
    void Start(const ROOM_SERVICES& services);
    void Release();
    // The number of this start, never 0: what was made for another one is gone.
    [[nodiscard]] uint64_t Generation() const { return generation; }

    [[nodiscard]] TextureCache& Textures() { return textures; }
    [[nodiscard]] LightProgram& Program() { return program; }

    // Buffers for vertices and indices. 0 without buffer support; then draw from arrays in memory.
    [[nodiscard]] uint32_t MakeVertexBuffer(const void* data, size_t bytes);
    [[nodiscard]] uint32_t MakeIndexBuffer(const void* data, size_t bytes);

    // Takes over from whoever drew before. Reads the settings of drawing.
    void BeginScene(const MATRIX4& projection, const MATRIX4& view);
    // Leaves the fixed pipeline, no buffers and no texture matrix.
    void EndScene();

    // The place in the room of everything drawn from here on.
    void SetTransform(const MATRIX4& model);
    // Whether any of this box, in the current transform, may be seen. Counts the ones that may not.
    [[nodiscard]] bool InView(VECTOR3 low, VECTOR3 high);
    // Whether all that is seen of this box, in the current transform, is seen from outside.
    [[nodiscard]] bool EyeOutside(VECTOR3 low, VECTOR3 high) const;

    void SetMaterial(const SURFACE_MATERIAL& material);
    // The surface's own image, in place of its diffuse colour. Null or a record without a texture: none.
    void BindTexture(const TEXTURE_RECORD* record);
    // A moving picture of which the active window shows. The brightness, if not 0, makes it shine.
    void BindPicture(const TEXTURE_RECORD& record, const EMU_VIDEO_FRAME& picture,
                     float brightness);
    void SetArrays(const VERTEX_ARRAYS& arrays) { wanted.arrays = arrays; }
    // For triangles whose backs are hidden in any case: they are not drawn then.
    void HideBackFaces(bool hide) { wanted.hidesBackFaces = hide; }
    // `indices` is an offset if the buffer is not 0. Arrays in memory stay until the next Flush.
    void DrawTriangles(uint32_t indexBuffer, const void* indices, int32_t count);
    // Draws what is listed. Depth decides what is seen of it, so the order is free; whatever is to come after
    // all of it is listed after this call.
    void Flush();

    [[nodiscard]] const ROOM_COUNTERS& Counters() const { return counters; }

private:
    // How texture coordinates become places in the texture: u * scale + offset.
    struct TEXTURE_PLACE {
        float scaleU = 1.0f;
        float scaleV = 1.0f;
        float offsetU = 0.0f;
        float offsetV = 0.0f;

        bool operator==(const TEXTURE_PLACE&) const = default;
    };

    // What is to be sent for some triangles.
    struct DRAW {
        MATRIX4 transform = {};
        VERTEX_ARRAYS arrays;
        SURFACE_MATERIAL material;
        uint32_t texture = 0;
        TEXTURE_PLACE place;
        float brightness = 0.0f;
        bool hidesBackFaces = false;
        uint32_t indexBuffer = 0;
        const void* indices = nullptr;
        int32_t count = 0;

        [[nodiscard]] LIT_SURFACE Surface() const {
            return {texture != 0, material.shininess != 0.0f, brightness};
        }
    };

    [[nodiscard]] uint32_t MakeBuffer(GLenum target, const void* data, size_t bytes);
    void SelectTexture(uint32_t name, const TEXTURE_PLACE& place);
    void BindBuffer(GLenum target, uint32_t name, uint32_t& bound);
    void Send(const DRAW& draw);
    void SendTransform(const MATRIX4& transform);
    void SendArrays(const VERTEX_ARRAYS& arrays);
    void SendMaterial(const SURFACE_MATERIAL& material);
    void SendColour(GLenum which, const std::array<float, 3>& value, std::array<float, 3>& was);
    void SendTexture(uint32_t texture, const TEXTURE_PLACE& place);
    void SendBackFaces(bool hide);
    [[nodiscard]] bool UsesProgram() const { return lighting && program.Works(); }

    GL_FUNCTIONS gl;
    LightProgram program;
    TextureCache textures;
    std::vector<uint32_t> buffers;
    uint64_t generation = 0;
    bool lighting = false; // the setting
    float anisotropy = 1.0f;
    uint64_t imageBytesBefore = 0; // uploaded before this scene
    ROOM_COUNTERS counters;

    MATRIX4 camera{};   // projection * view
    MATRIX4 toClip{};   // that and the current transform
    MATRIX4 toEye{};    // view and the current transform
    MATRIX4 viewing{};  // view alone
    float reach = 0.0f; // from the eye to a corner of what the view cuts off near it

    DRAW wanted; // of the next DrawTriangles
    std::vector<DRAW> listed;

    // What OpenGL has. `stateKnown` is false until the first draw of a scene has set all of it.
    bool stateKnown = false;
    DRAW sent;
    uint32_t boundVertexBuffer = 0;
    uint32_t boundIndexBuffer = 0;
};
