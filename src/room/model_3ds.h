// Model_3DS: a piece of furniture, read from a `.3ds` file and drawn with the lights of the room.
//
// It keeps what the room needs: triangles, normals that are smooth over all faces of a vertex, groups of
// faces by material, and one texture a material. The first material's texture can be replaced by a moving
// picture: that is how a running machine reaches a television.
//
// Units: room units. A file has z up; a model has y up: (x, y, z) is stored as (x, z, -y). Texture
//   coordinates are stored as (u, 1 - v), so that v 0 is an image's first row.
// Order: Load once, then Draw as often as wanted. Textures and vertex buffers are made by the first Draw,
//   and again by the first one after the painter was started again.
// Failure: a damaged file is refused whole, with a message that says what is wrong; nothing is kept.
// Thread: main; Load any.
#pragma once

#include "display/texture.h"
#include "machine/emu_system.h"
#include "room/vector.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class RoomPainter;

// The longest name in a file, its NUL aside.
inline constexpr size_t kLongest3dsName = 80;

class Model_3DS {
public:
    using RGBA = std::array<float, 4>;

    struct Material {
        std::string name;
        std::string texturePath; // `.\objects\NAME`; empty without a texture
        TEXTURE_RECORD texture{};
        bool textured = false; // also if the image is missing
        RGBA diffuse{0.0f, 0.0f, 0.0f, 1.0f};
        RGBA specular{};
        float selfIllum = 0.0f;
        float shininess = 0.0f;
    };

    // A group of faces of one material.
    struct MaterialFaces {
        std::vector<uint16_t> subFaces; // vertex indices, 3 per triangle
        int32_t numSubFaces = 0;        // indices
        int32_t materialIndex = 0;
    };

    struct Object {
        std::string name;
        std::vector<float> vertices;  // 3 per vertex
        std::vector<float> normals;   // 3 per vertex, of length 1 or 0
        std::vector<float> texCoords; // 2 per vertex
        std::vector<uint16_t> faces;  // vertex indices, 3 per triangle
        int32_t numFaceIndices = 0;
        int32_t numMatFaces = 0;
        int32_t numVerts = 0;
        int32_t numTexCoords = 0;
        bool textured = false; // the file has texture coordinates
        std::vector<MaterialFaces> matFaces;
        VECTOR3 low; // the box around the vertices
        VECTOR3 high;
    };

    Model_3DS() = default;
    virtual ~Model_3DS() = default;
    Model_3DS(const Model_3DS&) = delete;
    Model_3DS& operator=(const Model_3DS&) = delete;

    // Reads a whole file from memory, which stays the caller's. False with a message that begins with
    // `file`; the model is empty then.
    [[nodiscard]] bool Load(const uint8_t* data, size_t size, std::string_view file,
                            std::string& error);

    // Draws at the painter's current transform.
    void Draw(RoomPainter& painter);

    // Fetches textures and makes vertex buffers, unless this painter has them. Draw does so by itself.
    void Prepare(RoomPainter& painter);

    // Shows the attached picture or the model's own texture.
    void SetOverride(bool on);
    // The picture that the first material shows while the override is on. The records are copied; the
    // texture stays its owner's. A brightness of 0 shows the picture as an ordinary lit surface.
    void AttachPicture(const TEXTURE_RECORD& record, const EMU_VIDEO_FRAME& picture,
                       float brightness);

    int32_t numObjects = 0;
    int32_t numMaterials = 0;
    int32_t totalVerts = 0;
    int32_t totalFaces = 0;
    std::vector<Material> materials;
    std::vector<Object> objects;

    // For the owner; Draw leaves the placing to its caller.
    std::array<float, 3> pos{};
    std::array<float, 3> rot{};
    float scale = 1.0f;
    bool lit = true; // draw with normals
    bool visible = true;

    TEXTURE_RECORD overrideTexture{};
    EMU_VIDEO_FRAME overridePicture{};
    bool hasOverride = false;
    bool overrideOn = false;
    float tvBrightness = 0.0f;

private:
    // What of a group is drawn in one call. The indices begin with those of closed parts.
    struct PART {
        size_t group = 0;   // of the object
        size_t first = 0;   // of the mesh's indices
        int32_t closed = 0; // indices of triangles on closed parts
        int32_t open = 0;   // of the others
    };
    // Where an object's arrays lie: in buffers of the painter's, or in memory.
    struct MESH {
        uint32_t vertexBuffer = 0;
        uint32_t indexBuffer = 0;
        std::vector<uint16_t> indices; // of all parts
        std::vector<PART> parts;
    };

    [[nodiscard]] MESH MakeMesh(RoomPainter& painter, const Object& object) const;
    void DrawMesh(RoomPainter& painter, const Object& object, const MESH& mesh) const;
    void DrawPart(RoomPainter& painter, const Object& object, const MESH& mesh, const PART& part,
                  bool fromOutside) const;
    std::vector<MESH> meshes;    // by object
    uint64_t preparedFor = 0;    // the painter's start; 0: none
    TEXTURE_RECORD ownTexture{}; // the first material's, while a picture replaces it
    bool ownTextured = false;
};
