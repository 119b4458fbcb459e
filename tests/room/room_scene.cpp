#include "room/room_scene.h"

#include <algorithm>
#include <array>

namespace {

uint32_t Crc(const Bytes& bytes) {
    uint32_t crc = 0xFFFFFFFF;
    for (const uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320 : crc >> 1;
        }
    }
    return ~crc;
}

Bytes BigEndian(uint32_t value) {
    return {static_cast<uint8_t>(value >> 24), static_cast<uint8_t>(value >> 16),
            static_cast<uint8_t>(value >> 8), static_cast<uint8_t>(value)};
}

Bytes PngChunk(std::string_view kind, const Bytes& data) {
    const Bytes body = Bytes(kind.begin(), kind.end()) + data;
    return BigEndian(static_cast<uint32_t>(data.size())) + body + BigEndian(Crc(body));
}

// Rows in blocks that are not compressed.
Bytes Stored(const Bytes& data) {
    constexpr size_t kLargestBlock = 65535;
    Bytes out{0x78, 0x01};
    uint32_t a = 1;
    uint32_t b = 0;
    for (size_t at = 0; at < data.size(); at += kLargestBlock) {
        const size_t length = std::min(kLargestBlock, data.size() - at);
        out.push_back(at + length == data.size() ? 1 : 0);
        out = out + Word(length) + Word(~length & 0xFFFF);
        out.insert(out.end(), data.begin() + static_cast<std::ptrdiff_t>(at),
                   data.begin() + static_cast<std::ptrdiff_t>(at + length));
    }
    for (const uint8_t byte : data) {
        a = (a + byte) % 65521;
        b = (b + a) % 65521;
    }
    return out + BigEndian(b << 16 | a);
}

} // namespace

Bytes PngFile(uint32_t width, uint32_t height, const std::vector<uint32_t>& pixels) {
    Bytes rows;
    for (uint32_t y = 0; y < height; ++y) {
        rows.push_back(0); // no filter
        for (uint32_t x = 0; x < width; ++x) {
            const uint32_t pixel = pixels[size_t{y} * width + x];
            const Bytes rgba = BigEndian(pixel << 8 | pixel >> 24);
            rows.insert(rows.end(), rgba.begin(), rgba.end());
        }
    }
    constexpr std::array<uint8_t, 8> kMark{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    const Bytes head = BigEndian(width) + BigEndian(height) + Bytes{8, 6, 0, 0, 0};
    return Bytes(kMark.begin(), kMark.end()) + PngChunk("IHDR", head) +
           PngChunk("IDAT", Stored(rows)) + PngChunk("IEND", {});
}

namespace {

using Corner = std::array<float, 3>;

void AddFace(MeshBytes& mesh, const std::string& material, size_t a, size_t b, size_t c) {
    const auto known =
        std::find_if(mesh.groups.begin(), mesh.groups.end(),
                     [&](const MeshBytes::Group& group) { return group.material == material; });
    const auto at = static_cast<size_t>(known - mesh.groups.begin());
    if (at == mesh.groups.size()) {
        mesh.groups.push_back({material, {}});
    }
    mesh.groups[at].faces.push_back(mesh.faces.size());
    mesh.faces.push_back({a, b, c});
}

// A flat side with these corners, counter-clockwise from its lower left as seen from outside.
void AddSide(MeshBytes& mesh, const std::array<Corner, 4>& corners, const std::string& material,
             uint32_t cells) {
    const size_t first = mesh.places.size() / 3;
    for (uint32_t row = 0; row <= cells; ++row) {
        for (uint32_t column = 0; column <= cells; ++column) {
            const float u = static_cast<float>(column) / static_cast<float>(cells);
            const float v = static_cast<float>(row) / static_cast<float>(cells);
            for (size_t i = 0; i < 3; ++i) {
                mesh.places.push_back(corners[0][i] + (corners[1][i] - corners[0][i]) * u +
                                      (corners[3][i] - corners[0][i]) * v);
            }
            mesh.coordinates.insert(mesh.coordinates.end(), {u, v});
        }
    }
    for (uint32_t row = 0; row < cells; ++row) {
        for (uint32_t column = 0; column < cells; ++column) {
            const size_t at = first + size_t{row} * (cells + 1) + column;
            AddFace(mesh, material, at, at + 1, at + cells + 2);
            AddFace(mesh, material, at, at + cells + 2, at + cells + 1);
        }
    }
}

std::vector<uint32_t> Checks(uint32_t side, uint32_t light, uint32_t dark) {
    std::vector<uint32_t> pixels;
    for (uint32_t y = 0; y < side; ++y) {
        for (uint32_t x = 0; x < side; ++x) {
            pixels.push_back((x * 8 / side + y * 8 / side) % 2 == 0 ? light : dark);
        }
    }
    return pixels;
}

struct BOX_FILE {
    const char* name;
    float width;
    float height;
    float depth;
    uint32_t light; // colours of its image
    uint32_t dark;
    bool screen; // its front is the first material
    bool onTop;  // the screen is the top
};

constexpr BOX_FILE kBoxes[] = {
    {"coffeetable",  200, 49,      80,    0xFF9A6A42, 0xFF8A5A36, false, false},
    {"couch",        200, 70.347f, 86,    0xFF3C9A9A, 0xFF348888, false, false},
    {"tvunit",       500, 70,      137,   0xFF8A5A3A, 0xFF7A4E30, false, false},
    {"tv",           77,  82,      70,    0xFF606068, 0xFF505058, true,  false},
    {"tv2",          200, 235.5f,  18.5f, 0xFF404048, 0xFF383840, true,  false},
    {"gamegear",     20,  3,       11,    0xFF505058, 0xFF484850, true,  true },
    {"arcade",       85,  180,     109,   0xFFC05030, 0xFFA04028, true,  false},
    {"lightfixture", 40,  30,      40,    0xFFFFF0D0, 0xFFF0E0C0, false, false},
    {"ombrelune",    45,  45,      4,     0xFFF3EAD3, 0xFFE0D8C0, false, false},
    {"smsbox",       72,  103,     11,    0xFFB0B0B8, 0xFFA0A0A8, true,  false},
    {"ggbox",        72,  100,     10,    0xFFB0B0B8, 0xFFA0A0A8, true,  false},
};

Bytes BoxFile(const BOX_FILE& box, uint32_t cells) {
    const Bytes gloss = ColourBytes(0xA030, 128, 128, 128) + Chunk(0xA040, Chunk(0x0030, Word(40)));
    const Bytes paint = TextureMap(std::string(box.name) + ".png");
    const Bytes materials = NamedMaterial("glass", TextureMap("glass.png") + gloss) +
                            NamedMaterial("paint", box.screen ? paint + gloss : paint);
    const std::string front = box.screen ? "glass" : "paint";
    const MeshBytes mesh =
        box.onTop ? BoxMeshWithTop(box.width, box.height, box.depth, "paint", front, cells)
                  : BoxMesh(box.width, box.height, box.depth, "paint", front, cells);
    return ModelFile(materials + mesh.Object("box"));
}

MeshBytes Box(float width, float height, float depth, const std::array<std::string, 6>& materials,
              uint32_t cells) {
    const float w = width / 2;
    const float h = height / 2;
    const float d = depth / 2;
    const std::array<std::array<Corner, 4>, 6> sides = {
        {
         {{{-w, -d, -h}, {w, -d, -h}, {w, -d, h}, {-w, -d, h}}},
         {{{w, d, -h}, {-w, d, -h}, {-w, d, h}, {w, d, h}}},
         {{{w, -d, -h}, {w, d, -h}, {w, d, h}, {w, -d, h}}},
         {{{-w, d, -h}, {-w, -d, -h}, {-w, -d, h}, {-w, d, h}}},
         {{{-w, -d, h}, {w, -d, h}, {w, d, h}, {-w, d, h}}},
         {{{-w, d, -h}, {w, d, -h}, {w, -d, -h}, {-w, -d, -h}}},
         }
    };
    MeshBytes mesh;
    for (size_t i = 0; i < sides.size(); ++i) {
        AddSide(mesh, sides[i], materials[i], cells);
    }
    return mesh;
}

} // namespace

MeshBytes BoxMesh(float width, float height, float depth, const std::string& sides,
                  const std::string& front, uint32_t cells) {
    return Box(width, height, depth, {front, sides, sides, sides, sides, sides}, cells);
}

MeshBytes BoxMeshWithTop(float width, float height, float depth, const std::string& sides,
                         const std::string& top, uint32_t cells) {
    return Box(width, height, depth, {sides, sides, sides, sides, top, sides}, cells);
}

RoomFiles RoomOfBoxes(uint32_t cells, uint32_t side) {
    RoomFiles files;
    const auto addImage = [&](const std::string& name, uint32_t light, uint32_t dark) {
        files[name] = PngFile(side, side, Checks(side, light, dark));
    };
    for (const BOX_FILE& box : kBoxes) {
        files[std::string(box.name) + ".3ds"] = BoxFile(box, cells);
        addImage(std::string(box.name) + ".png", box.light, box.dark);
    }
    addImage("glass.png", 0xFF181C20, 0xFF14181C);
    addImage("floor2.jpg", 0xFFE0A860, 0xFFD89C54);
    addImage("genesisad.jpg", 0xFF4060C0, 0xFF203060);
    addImage("thewizard.jpg", 0xFFC04060, 0xFF602030);
    return files;
}
