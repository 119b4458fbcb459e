// Makes `.3ds` files, chunk by chunk.
//
// Places are the file's: x right, y away, z up.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

using Bytes = std::vector<uint8_t>;

inline Bytes operator+(Bytes a, const Bytes& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

inline Bytes Word(size_t value) {
    return {static_cast<uint8_t>(value), static_cast<uint8_t>(value >> 8)};
}

inline Bytes Long(size_t value) {
    return Word(value) + Word(value >> 16);
}

inline Bytes Words(std::initializer_list<size_t> values) {
    Bytes bytes;
    for (const size_t value : values) {
        bytes = bytes + Word(value);
    }
    return bytes;
}

inline Bytes Floats(const std::vector<float>& values) {
    Bytes bytes;
    for (const float value : values) {
        bytes = bytes + Long(std::bit_cast<uint32_t>(value));
    }
    return bytes;
}

inline Bytes Name(std::string_view text) {
    Bytes bytes(text.begin(), text.end());
    bytes.push_back(0);
    return bytes;
}

inline Bytes Chunk(size_t id, const Bytes& contents) {
    return Word(id) + Long(contents.size() + 6) + contents;
}

inline Bytes ModelFile(const Bytes& editor) {
    return Chunk(0x4D4D, Chunk(0x3D3D, editor));
}

inline Bytes ColourBytes(size_t id, uint8_t red, uint8_t green, uint8_t blue) {
    return Chunk(id, Chunk(0x0011, {red, green, blue}));
}

inline Bytes NamedMaterial(std::string_view name, const Bytes& parts = {}) {
    return Chunk(0xAFFF, Chunk(0xA000, Name(name)) + parts);
}

inline Bytes TextureMap(std::string_view file) {
    return Chunk(0xA200, Chunk(0xA300, Name(file)));
}

// A mesh under construction.
struct MeshBytes {
    std::vector<float> places;      // 3 a vertex
    std::vector<float> coordinates; // 2 a vertex; none for an untextured mesh
    std::vector<std::array<size_t, 3>> faces;
    struct Group {
        std::string material;
        std::vector<size_t> faces;
    };
    std::vector<Group> groups;

    [[nodiscard]] Bytes Vertices() const {
        return Chunk(0x4110, Word(places.size() / 3) + Floats(places));
    }
    [[nodiscard]] Bytes Coordinates() const {
        return coordinates.empty()
                   ? Bytes()
                   : Chunk(0x4140, Word(coordinates.size() / 2) + Floats(coordinates));
    }
    [[nodiscard]] Bytes Faces() const {
        Bytes bytes = Word(faces.size());
        for (const auto& face : faces) {
            bytes = bytes + Words({face[0], face[1], face[2], 7}); // 7: flags
        }
        for (const Group& group : groups) {
            Bytes numbers;
            for (const size_t face : group.faces) {
                numbers = numbers + Word(face);
            }
            bytes =
                bytes + Chunk(0x4130, Name(group.material) + Word(group.faces.size()) + numbers);
        }
        return Chunk(0x4120, bytes);
    }
    [[nodiscard]] Bytes Object(std::string_view name) const {
        return Chunk(0x4000, Name(name) + Chunk(0x4100, Vertices() + Coordinates() + Faces()));
    }
};
