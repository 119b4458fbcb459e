#include "room/closed_parts.h"

#include "room/vector.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <tuple>

namespace {

// A side of a triangle from one place to another.
struct SIDE {
    uint32_t low; // the lesser place
    uint32_t high;
    uint32_t triangle;
    bool upwards; // from the lesser place to the greater

    bool operator<(const SIDE& other) const {
        return std::tie(low, high) < std::tie(other.low, other.high);
    }
    [[nodiscard]] bool Joins(const SIDE& other) const {
        return low == other.low && high == other.high;
    }
};

class Parts {
public:
    explicit Parts(size_t triangles)
        : parents(triangles) {
        std::iota(parents.begin(), parents.end(), 0U);
    }
    uint32_t Find(uint32_t triangle) {
        while (parents[triangle] != triangle) {
            parents[triangle] = parents[parents[triangle]];
            triangle = parents[triangle];
        }
        return triangle;
    }
    void Join(uint32_t one, uint32_t other) { parents[Find(one)] = Find(other); }

private:
    std::vector<uint32_t> parents;
};

// The number of a place, by vertex.
std::vector<uint32_t> Places(std::span<const float> positions) {
    const size_t count = positions.size() / 3;
    const auto place = [&](uint32_t vertex) {
        const float* const p = positions.data() + size_t{vertex} * 3;
        return std::array<float, 3>{p[0], p[1], p[2]};
    };
    std::vector<uint32_t> order(count);
    std::iota(order.begin(), order.end(), 0U);
    std::ranges::sort(order, {}, place);
    std::vector<uint32_t> places(count);
    for (size_t i = 1; i < count; ++i) {
        const bool same = place(order[i]) == place(order[i - 1]);
        places[order[i]] = places[order[i - 1]] + (same ? 0 : 1);
    }
    return places;
}

// Six times the volume between the triangle and the origin.
double Volume(std::span<const float> positions, const uint16_t* corners) {
    const auto at = [&](size_t corner) {
        const float* const p = positions.data() + size_t{corners[corner]} * 3;
        return VECTOR3{p[0], p[1], p[2]};
    };
    return double{Dot(at(0), Cross(at(1), at(2)))};
}

} // namespace

std::vector<bool> FindClosedParts(std::span<const float> positions,
                                  std::span<const uint16_t> indices) {
    const auto triangles = static_cast<uint32_t>(indices.size() / 3);
    const std::vector<uint32_t> places = Places(positions);
    std::vector<SIDE> sides;
    sides.reserve(indices.size());
    std::vector<bool> flat(triangles);
    for (uint32_t i = 0; i < triangles; ++i) {
        std::array<uint32_t, 3> corners{};
        for (size_t c = 0; c < 3; ++c) {
            corners[c] = places[indices[size_t{i} * 3 + c]];
        }
        flat[i] = corners[0] == corners[1] || corners[1] == corners[2] || corners[2] == corners[0];
        for (size_t c = 0; c < 3 && !flat[i]; ++c) {
            const uint32_t from = corners[c];
            const uint32_t to = corners[(c + 1) % 3];
            sides.push_back({std::min(from, to), std::max(from, to), i, from < to});
        }
    }
    std::sort(sides.begin(), sides.end());

    // Triangles with a common side are of one part. Each side is run through both ways, equally often.
    Parts parts(triangles);
    std::vector<bool> open(triangles);
    for (auto first = sides.begin(); first != sides.end();) {
        const auto last =
            std::find_if(first, sides.end(), [&](const SIDE& side) { return !side.Joins(*first); });
        const auto ups = std::count_if(first, last, [](const SIDE& side) { return side.upwards; });
        for (auto side = first; side != last; ++side) {
            parts.Join(side->triangle, first->triangle);
            open[side->triangle] = open[side->triangle] || ups * 2 != last - first;
        }
        first = last;
    }
    std::vector<bool> openParts(triangles);
    std::vector<double> volumes(triangles);
    for (uint32_t i = 0; i < triangles; ++i) {
        const uint32_t part = parts.Find(i);
        openParts[part] = openParts[part] || open[i];
        volumes[part] += Volume(positions, indices.data() + size_t{i} * 3);
    }
    std::vector<bool> closed(triangles);
    for (uint32_t i = 0; i < triangles; ++i) {
        const uint32_t part = parts.Find(i);
        closed[i] = !flat[i] && !openParts[part] && volumes[part] > 0.0; // not inside out
    }
    return closed;
}
