#include "room/closed_parts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace {

struct MESH {
    std::vector<float> positions;
    std::vector<uint16_t> indices;

    // A cube of this side with its lowest corner at (x, 0, 0), faces outwards.
    void AddCube(float x, float side) {
        const auto first = static_cast<uint16_t>(positions.size() / 3);
        for (uint32_t corner = 0; corner < 8; ++corner) {
            positions.push_back(x + ((corner & 1) != 0 ? side : 0.0f));
            positions.push_back((corner & 2) != 0 ? side : 0.0f);
            positions.push_back((corner & 4) != 0 ? side : 0.0f);
        }
        constexpr std::array<std::array<uint16_t, 4>, 6> kSides = {
            {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}}
        };
        for (const auto& s : kSides) {
            for (const size_t i : {0U, 1U, 2U, 0U, 2U, 3U}) {
                indices.push_back(static_cast<uint16_t>(first + s[i]));
            }
        }
    }
    // Every triangle gets vertices of its own, as where charts of a texture meet.
    void CutApart() {
        std::vector<float> cut;
        for (size_t i = 0; i < indices.size(); ++i) {
            const float* const p = positions.data() + size_t{indices[i]} * 3;
            cut.insert(cut.end(), p, p + 3);
            indices[i] = static_cast<uint16_t>(i);
        }
        positions = cut;
    }
    [[nodiscard]] std::vector<bool> Closed() const { return FindClosedParts(positions, indices); }
};

constexpr std::ptrdiff_t kCubeTriangles = 12;

TEST(ClosedParts, ACubeIsOne) {
    MESH mesh;
    mesh.AddCube(0, 1);
    EXPECT_EQ(mesh.Closed(), std::vector<bool>(kCubeTriangles, true));
    mesh.CutApart();
    EXPECT_EQ(mesh.Closed(), std::vector<bool>(kCubeTriangles, true)) << "by place, not by vertex";
}

TEST(ClosedParts, ACubeWithoutATriangleIsNone) {
    for (size_t missing = 0; missing < kCubeTriangles; ++missing) {
        MESH mesh;
        mesh.AddCube(0, 1);
        mesh.indices.erase(mesh.indices.begin() + static_cast<std::ptrdiff_t>(missing * 3),
                           mesh.indices.begin() + static_cast<std::ptrdiff_t>(missing * 3 + 3));
        EXPECT_EQ(mesh.Closed(), std::vector<bool>(kCubeTriangles - 1, false)) << missing;
    }
}

TEST(ClosedParts, ATurnedTriangleOpensIt) {
    MESH mesh;
    mesh.AddCube(0, 1);
    std::swap(mesh.indices[4], mesh.indices[5]);
    EXPECT_EQ(mesh.Closed(), std::vector<bool>(kCubeTriangles, false));
}

TEST(ClosedParts, FacesInwardsAreSeenFromInsideAlone) {
    MESH mesh;
    mesh.AddCube(0, 1);
    for (size_t i = 0; i < mesh.indices.size(); i += 3) {
        std::swap(mesh.indices[i], mesh.indices[i + 1]);
    }
    EXPECT_EQ(mesh.Closed(), std::vector<bool>(kCubeTriangles, false));
}

TEST(ClosedParts, EachPartCountsByItself) {
    MESH mesh;
    mesh.AddCube(0, 1);
    mesh.AddCube(5, 1);
    mesh.AddCube(1, 1);                           // touches the first with a whole side
    mesh.indices.resize(mesh.indices.size() - 3); // and has a hole
    const std::vector<bool> closed = mesh.Closed();
    EXPECT_EQ(
        std::count(closed.begin() + kCubeTriangles, closed.begin() + 2 * kCubeTriangles, true),
        kCubeTriangles)
        << "the one far away";
    EXPECT_EQ(std::count(closed.begin() + 2 * kCubeTriangles, closed.end(), true), 0);
}

TEST(ClosedParts, ATriangleWithoutAnAreaOpensNothing) {
    MESH mesh;
    mesh.AddCube(0, 1);
    mesh.indices.insert(mesh.indices.end(), {0, 0, 1});
    std::vector<bool> expected(kCubeTriangles, true);
    expected.push_back(false);
    EXPECT_EQ(mesh.Closed(), expected);
}

TEST(ClosedParts, NothingHasNone) {
    EXPECT_TRUE(MESH().Closed().empty());
}

} // namespace
