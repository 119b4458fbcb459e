#include "room/model_3ds.h"

#include "base/bytes.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <utility>

namespace {

// A chunk is an id of 2 bytes, a length of 4 that includes these 6, and its contents; many contain
// chunks themselves, after some data of their own.
constexpr size_t kChunkHeader = 6;

enum ChunkId : uint16_t {
    kColourFloats = 0x0010,
    kColourBytes = 0x0011,
    kColourBytesLinear = 0x0012,
    kColourFloatsLinear = 0x0013,
    kPercentWord = 0x0030,
    kPercentFloat = 0x0031,
    kEditor = 0x3D3D,
    kObject = 0x4000,
    kMesh = 0x4100,
    kVertexList = 0x4110,
    kFaceList = 0x4120,
    kFaceGroup = 0x4130,
    kTextureCoordinates = 0x4140,
    kMaterialName = 0xA000,
    kMaterialDiffuse = 0xA020,
    kMaterialSpecular = 0xA030,
    kMaterialShininess = 0xA040,
    kMaterialSelfIllum = 0xA084,
    kMaterialTexture = 0xA200,
    kTextureFile = 0xA300,
    kMaterial = 0xAFFF,
};

constexpr float kShininessScale = 30.0f;
constexpr float kPerCent = 0.01f;
constexpr float kFarthest = 1e6f; // of a vertex from the origin, so that no normal overflows
constexpr uint16_t kLeastPercentWord = 2; // a word of 0 or 1 means nothing
constexpr std::string_view kImageFolder = ".\\objects\\";

// Reads one file into a model. Every function returns false, with the reason in `fault`, when the bytes
// are not what they must be.
class Reader {
public:
    Reader(const uint8_t* data, size_t length, Model_3DS& target)
        : buffer(data)
        , size(length)
        , model(target) {}

    [[nodiscard]] bool ReadFile();
    [[nodiscard]] const std::string& Fault() const { return fault; }

private:
    struct CHUNK {
        uint16_t id = 0;
        size_t begin = 0; // of the contents
        size_t end = 0;
    };

    bool Fail(std::string reason) {
        fault = std::move(reason);
        return false;
    }
    bool Need(size_t bytes, size_t end, const char* what) {
        return bytes <= end - cursor || Fail(std::string(what) + " is cut off");
    }

    uint16_t Word() {
        const auto value = LoadLittleEndian<uint16_t>(buffer + cursor);
        cursor += sizeof value;
        return value;
    }
    float Float() {
        const auto value = std::bit_cast<float>(LoadLittleEndian<uint32_t>(buffer + cursor));
        cursor += sizeof value;
        return value;
    }
    bool ReadFloat(float& value) {
        value = Float();
        return std::isfinite(value) || Fail("a number is not finite");
    }
    bool ReadCount(size_t& count, size_t entryBytes, size_t end, const char* what);
    bool ReadName(std::string& name, size_t end, const char* what);

    // Calls `handle(chunk)` for every chunk from `begin` to `end`, with the cursor on its contents.
    template <class Handler>
    bool ForEachChunk(size_t begin, size_t end, const Handler& handle);

    bool ReadEditor(const CHUNK& editor);
    bool ReadMaterial(const CHUNK& chunk);
    bool ReadMaterialPart(const CHUNK& chunk, Model_3DS::Material& material);
    bool ReadTexture(const CHUNK& chunk, Model_3DS::Material& material);
    bool ReadColour(const CHUNK& chunk, Model_3DS::RGBA& colour);
    bool ReadPercentage(const CHUNK& chunk, float scale, float& value);
    bool ReadObject(const CHUNK& chunk);
    bool ReadMesh(const CHUNK& chunk, Model_3DS::Object& object);
    bool ReadVertices(const CHUNK& chunk, Model_3DS::Object& object);
    bool ReadTextureCoordinates(const CHUNK& chunk, Model_3DS::Object& object);
    bool ReadFaces(const CHUNK& chunk, Model_3DS::Object& object);
    bool ReadFaceGroup(const CHUNK& chunk, Model_3DS::Object& object);

    const uint8_t* buffer;
    size_t size;
    size_t cursor = 0;
    Model_3DS& model;
    std::string fault;
};

template <class Handler>
bool Reader::ForEachChunk(size_t begin, size_t end, const Handler& handle) {
    for (size_t at = begin; at < end;) {
        if (end - at < kChunkHeader) {
            return Fail("a chunk's head is cut off");
        }
        const size_t length = LoadLittleEndian<uint32_t>(buffer + at + 2);
        if (length < kChunkHeader || length > end - at) {
            return Fail("a chunk's length does not fit where it lies");
        }
        const CHUNK chunk{LoadLittleEndian<uint16_t>(buffer + at), at + kChunkHeader, at + length};
        cursor = chunk.begin;
        if (!handle(chunk)) {
            return false;
        }
        at = chunk.end;
    }
    return true;
}

bool Reader::ReadCount(size_t& count, size_t entryBytes, size_t end, const char* what) {
    if (!Need(sizeof(uint16_t), end, what)) {
        return false;
    }
    count = Word();
    return Need(count * entryBytes, end, what);
}

bool Reader::ReadName(std::string& name, size_t end, const char* what) {
    const size_t most = std::min(end - cursor, kLongest3dsName + 1);
    const uint8_t* const begin = buffer + cursor;
    const uint8_t* const stop = std::find(begin, begin + most, uint8_t{0});
    if (stop == begin + most) {
        return Fail(std::string(what) + " has no end");
    }
    name.assign(begin, stop);
    cursor += name.size() + 1;
    return true;
}

// The root's own id does not matter.
bool Reader::ReadFile() {
    if (size < kChunkHeader) {
        return Fail("it is too short");
    }
    const size_t length = LoadLittleEndian<uint32_t>(buffer + 2);
    if (length < kChunkHeader || length > size) {
        return Fail("its length is not the one that it states");
    }
    return ForEachChunk(kChunkHeader, length, [this](const CHUNK& chunk) {
        return chunk.id != kEditor || ReadEditor(chunk);
    });
}

// Materials first, wherever they lie, since face groups look them up by name.
bool Reader::ReadEditor(const CHUNK& editor) {
    const bool materials = ForEachChunk(editor.begin, editor.end, [this](const CHUNK& chunk) {
        return chunk.id != kMaterial || ReadMaterial(chunk);
    });
    return materials && ForEachChunk(editor.begin, editor.end, [this](const CHUNK& chunk) {
               return chunk.id != kObject || ReadObject(chunk);
           });
}

bool Reader::ReadMaterial(const CHUNK& chunk) {
    Model_3DS::Material& material = model.materials.emplace_back();
    return ForEachChunk(chunk.begin, chunk.end,
                        [&](const CHUNK& part) { return ReadMaterialPart(part, material); });
}

bool Reader::ReadMaterialPart(const CHUNK& chunk, Model_3DS::Material& material) {
    switch (chunk.id) {
    case kMaterialName: {
        // A longer name is cut off.
        const uint8_t* const begin = buffer + chunk.begin;
        const size_t most = std::min(chunk.end - chunk.begin, kLongest3dsName);
        material.name.assign(begin, std::find(begin, begin + most, uint8_t{0}));
        return true;
    }
    case kMaterialDiffuse: return ReadColour(chunk, material.diffuse);
    case kMaterialSpecular: return ReadColour(chunk, material.specular);
    case kMaterialShininess: return ReadPercentage(chunk, kShininessScale, material.shininess);
    case kMaterialSelfIllum: return ReadPercentage(chunk, 1.0f, material.selfIllum);
    case kMaterialTexture: return ReadTexture(chunk, material);
    default: return true;
    }
}

// Of several colours the last one counts.
bool Reader::ReadColour(const CHUNK& chunk, Model_3DS::RGBA& colour) {
    return ForEachChunk(chunk.begin, chunk.end, [&](const CHUNK& part) {
        const bool floats = part.id == kColourFloats || part.id == kColourFloatsLinear;
        const bool bytes = part.id == kColourBytes || part.id == kColourBytesLinear;
        if (!floats && !bytes) {
            return true;
        }
        if (!Need(floats ? 3 * sizeof(float) : 3, part.end, "a colour")) {
            return false;
        }
        for (size_t channel = 0; channel < 3; ++channel) {
            if (bytes) {
                colour[channel] = static_cast<float>(buffer[cursor++]) * (1.0f / 255.0f);
            } else if (!ReadFloat(colour[channel])) {
                return false;
            }
        }
        colour[3] = 1.0f;
        return true;
    });
}

// Leaves the value as it is without a percentage that counts.
bool Reader::ReadPercentage(const CHUNK& chunk, float scale, float& value) {
    return ForEachChunk(chunk.begin, chunk.end, [&](const CHUNK& part) {
        if (part.id == kPercentWord) {
            if (!Need(sizeof(uint16_t), part.end, "a percentage")) {
                return false;
            }
            const uint16_t word = Word();
            if (word >= kLeastPercentWord) {
                value = static_cast<float>(word) * kPerCent * scale;
            }
        } else if (part.id == kPercentFloat) {
            float number = 0.0f;
            if (!Need(sizeof(float), part.end, "a percentage") || !ReadFloat(number)) {
                return false;
            }
            value = number * scale;
        }
        return true;
    });
}

bool Reader::ReadTexture(const CHUNK& chunk, Model_3DS::Material& material) {
    return ForEachChunk(chunk.begin, chunk.end, [&](const CHUNK& part) {
        if (part.id != kTextureFile) {
            return true;
        }
        std::string name;
        if (!ReadName(name, part.end, "an image's name")) {
            return false;
        }
        material.texturePath = std::string(kImageFolder) + name;
        material.textured = true;
        return true;
    });
}

bool Reader::ReadObject(const CHUNK& chunk) {
    Model_3DS::Object& object = model.objects.emplace_back();
    if (!ReadName(object.name, chunk.end, "an object's name")) {
        return false;
    }
    bool found = false;
    return ForEachChunk(cursor, chunk.end, [&](const CHUNK& part) {
        if (part.id != kMesh) {
            return true;
        }
        if (std::exchange(found, true)) {
            return Fail("the object \"" + object.name + "\" has two meshes");
        }
        return ReadMesh(part, object);
    });
}

// Faces last, wherever they lie, since they need the vertices.
bool Reader::ReadMesh(const CHUNK& chunk, Model_3DS::Object& object) {
    size_t vertexLists = 0;
    size_t coordinateLists = 0;
    const bool vertices = ForEachChunk(chunk.begin, chunk.end, [&](const CHUNK& part) {
        if (part.id == kVertexList) {
            ++vertexLists;
            return ReadVertices(part, object);
        }
        if (part.id == kTextureCoordinates) {
            ++coordinateLists;
            return ReadTextureCoordinates(part, object);
        }
        return true;
    });
    size_t faceLists = 0;
    const bool faces = vertices && ForEachChunk(chunk.begin, chunk.end, [&](const CHUNK& part) {
                           if (part.id != kFaceList) {
                               return true;
                           }
                           ++faceLists;
                           return ReadFaces(part, object);
                       });
    if (!faces) {
        return false;
    }
    if (std::max({vertexLists, coordinateLists, faceLists}) > 1) {
        return Fail("the object \"" + object.name + "\" has two lists of one kind");
    }
    if (object.textured && object.numTexCoords < object.numVerts) {
        return Fail("the object \"" + object.name +
                    "\" has fewer texture coordinates than vertices");
    }
    return true;
}

bool Reader::ReadVertices(const CHUNK& chunk, Model_3DS::Object& object) {
    size_t count = 0;
    if (!ReadCount(count, 3 * sizeof(float), chunk.end, "a vertex list")) {
        return false;
    }
    object.vertices.resize(count * 3);
    object.normals.assign(count * 3, 0.0f);
    object.numVerts = static_cast<int32_t>(count);
    for (size_t i = 0; i < count * 3; i += 3) {
        float x = 0.0f;
        float y = 0.0f;
        float z = 0.0f;
        if (!ReadFloat(x) || !ReadFloat(y) || !ReadFloat(z)) {
            return false;
        }
        if (std::max({std::abs(x), std::abs(y), std::abs(z)}) > kFarthest) {
            return Fail("a vertex of the object \"" + object.name + "\" is too far away");
        }
        object.vertices[i] = x;
        object.vertices[i + 1] = z;
        object.vertices[i + 2] = -y;
    }
    return true;
}

bool Reader::ReadTextureCoordinates(const CHUNK& chunk, Model_3DS::Object& object) {
    size_t count = 0;
    if (!ReadCount(count, 2 * sizeof(float), chunk.end, "a list of texture coordinates")) {
        return false;
    }
    object.texCoords.resize(count * 2);
    object.numTexCoords = static_cast<int32_t>(count);
    object.textured = true;
    for (size_t i = 0; i < count * 2; i += 2) {
        float v = 0.0f;
        if (!ReadFloat(object.texCoords[i]) || !ReadFloat(v)) {
            return false;
        }
        object.texCoords[i + 1] = 1.0f - v;
    }
    return true;
}

VECTOR3 VertexAt(const Model_3DS::Object& object, uint16_t index) {
    const float* const v = object.vertices.data() + size_t{index} * 3;
    return {v[0], v[1], v[2]};
}

// Every face shares in the normals of its vertices, the larger ones more.
void AddToNormals(Model_3DS::Object& object, const uint16_t* face) {
    const VECTOR3 v0 = VertexAt(object, face[0]);
    const VECTOR3 v1 = VertexAt(object, face[1]);
    const VECTOR3 v2 = VertexAt(object, face[2]);
    const VECTOR3 normal = Cross(v1 - v2, v1 - v0);
    for (size_t corner = 0; corner < 3; ++corner) {
        float* const sum = object.normals.data() + size_t{face[corner]} * 3;
        sum[0] += normal.x;
        sum[1] += normal.y;
        sum[2] += normal.z;
    }
}

bool Reader::ReadFaces(const CHUNK& chunk, Model_3DS::Object& object) {
    constexpr size_t kFaceBytes = 4 * sizeof(uint16_t); // three vertices and flags
    size_t count = 0;
    if (!ReadCount(count, kFaceBytes, chunk.end, "a face list")) {
        return false;
    }
    object.faces.resize(count * 3);
    object.numFaceIndices = static_cast<int32_t>(count * 3);
    for (size_t i = 0; i < count * 3; i += 3) {
        uint16_t* const face = object.faces.data() + i;
        for (size_t corner = 0; corner < 3; ++corner) {
            face[corner] = Word();
            if (face[corner] >= object.numVerts) {
                return Fail("a face of the object \"" + object.name + "\" has no such vertex");
            }
        }
        cursor += sizeof(uint16_t);
        AddToNormals(object, face);
    }
    return ForEachChunk(cursor, chunk.end, [&](const CHUNK& part) {
        return part.id != kFaceGroup || ReadFaceGroup(part, object);
    });
}

bool Reader::ReadFaceGroup(const CHUNK& chunk, Model_3DS::Object& object) {
    std::string name;
    size_t count = 0;
    if (!ReadName(name, chunk.end, "a material's name") ||
        !ReadCount(count, sizeof(uint16_t), chunk.end, "a face group")) {
        return false;
    }
    const auto material =
        std::find_if(model.materials.begin(), model.materials.end(),
                     [&](const Model_3DS::Material& row) { return row.name == name; });
    if (material == model.materials.end()) {
        return Fail("it has no material \"" + name + "\"");
    }
    Model_3DS::MaterialFaces& group = object.matFaces.emplace_back();
    group.materialIndex = static_cast<int32_t>(material - model.materials.begin());
    group.subFaces.reserve(count * 3);
    for (size_t i = 0; i < count; ++i) {
        const size_t first = size_t{Word()} * 3;
        if (first >= object.faces.size()) {
            return Fail("a face group of the object \"" + object.name + "\" has no such face");
        }
        group.subFaces.insert(group.subFaces.end(), object.faces.data() + first,
                              object.faces.data() + first + 3);
    }
    group.numSubFaces = static_cast<int32_t>(group.subFaces.size());
    object.numMatFaces = static_cast<int32_t>(object.matFaces.size());
    return true;
}

void NormaliseAll(std::vector<float>& normals) {
    for (size_t i = 0; i < normals.size(); i += 3) {
        const VECTOR3 normal = Normalised({normals[i], normals[i + 1], normals[i + 2]});
        normals[i] = normal.x;
        normals[i + 1] = normal.y;
        normals[i + 2] = normal.z;
    }
}

// The place of a vertex serves as its coordinates where the file has none.
void FillTextureCoordinates(Model_3DS::Object& object) {
    object.numTexCoords = object.numVerts;
    object.texCoords.reserve(object.vertices.size() / 3 * 2);
    for (size_t i = 0; i < object.vertices.size(); i += 3) {
        object.texCoords.push_back(object.vertices[i]);
        object.texCoords.push_back(object.vertices[i + 1]);
    }
}

void FindBox(Model_3DS::Object& object) {
    if (object.vertices.empty()) {
        return;
    }
    constexpr float kMost = std::numeric_limits<float>::max();
    VECTOR3 low{kMost, kMost, kMost};
    VECTOR3 high{-kMost, -kMost, -kMost};
    for (size_t i = 0; i < object.vertices.size(); i += 3) {
        const float* const v = object.vertices.data() + i;
        low = {std::min(low.x, v[0]), std::min(low.y, v[1]), std::min(low.z, v[2])};
        high = {std::max(high.x, v[0]), std::max(high.y, v[1]), std::max(high.z, v[2])};
    }
    object.low = low;
    object.high = high;
}

} // namespace

bool Model_3DS::Load(const uint8_t* data, size_t size, std::string_view file, std::string& error) {
    materials.clear();
    objects.clear();
    meshes.clear();
    preparedFor = 0;
    hasOverride = overrideOn = false;
    numObjects = numMaterials = totalVerts = totalFaces = 0;
    Reader reader(data, size, *this);
    if (!reader.ReadFile()) {
        materials.clear();
        objects.clear();
        error = std::string(file) + " is damaged: " + reader.Fault();
        return false;
    }
    for (Object& object : objects) {
        NormaliseAll(object.normals);
        if (!object.textured) {
            FillTextureCoordinates(object);
        }
        FindBox(object);
        totalVerts += object.numVerts;
        totalFaces += object.numFaceIndices / 3;
    }
    numObjects = static_cast<int32_t>(objects.size());
    numMaterials = static_cast<int32_t>(materials.size());
    return true;
}
