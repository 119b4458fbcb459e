// Draws a model's texture sheets and works out how much light reaches each texel: the share of the open sky
// (occlusion, with some light back from what is hit), the share of the lamp (a soft shadow), and how near a convex
// edge is (where paint wears off). Started by model.py, which says what the files hold.
//
//   bake IN OUT
//   IN:  i32 occluders, i32 triangles, i32 pages, i32 rays, f32 lamp x, y, z, radius (radius 0: no lamp), f32 reach,
//        f32 edge reach; per occluder 9 f32 corners, f32 light returned, i32 part; per triangle i32 page, i32 chart, i32
//        part, 6 f32 texel places, 9 f32 corners, 9 f32 normals; per page i32 width, i32 height
//   OUT: per page, per texel: i32 triangle (-1: none), f32 second and third corner's weight, f32 sky, f32 lamp, f32 edge,
//        f32 seen, the share of rays that do not end at once or inside of a part: 0 where other parts hide the texel.
//        Without pages: per triangle the `seen` of a point that sees anything, or 0.
// An occluder of part -2 belongs to no closed shape.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <thread>
#include <vector>

struct Vec {
    float x = 0, y = 0, z = 0;
};
static Vec operator+(Vec a, Vec b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
static Vec operator-(Vec a, Vec b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
static Vec operator*(Vec a, float s) {
    return {a.x * s, a.y * s, a.z * s};
}
static float Dot(Vec a, Vec b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
static Vec Cross(Vec a, Vec b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
static Vec Normal(Vec a) {
    float length = std::sqrt(Dot(a, a));
    return length > 0 ? a * (1 / length) : Vec{0, 1, 0};
}

struct Occluder {
    Vec corner[3];
    float returned = 0;
    int32_t part = 0;
};
struct Triangle {
    int32_t page = 0, chart = 0, part = 0;
    float place[6] = {};
    Vec corner[3], normal[3];
};
struct Texel {
    int32_t triangle = -1;
    float b = 0, c = 0, sky = 1, lamp = 1, edge = 0, seen = 1;
};

// A bounding volume tree over the occluders: an inner node's children lie at `first` and `first + 1`.
struct Node {
    Vec low, high;
    int first = 0, count = 0;
};
struct Tree {
    std::vector<Occluder> things;
    std::vector<Node> nodes;

    void Fit(Node& node) const {
        node.low = {1e30F, 1e30F, 1e30F};
        node.high = {-1e30F, -1e30F, -1e30F};
        for (int i = node.first; i < node.first + node.count; ++i) {
            for (Vec p : things[i].corner) {
                node.low = {std::min(node.low.x, p.x), std::min(node.low.y, p.y),
                            std::min(node.low.z, p.z)};
                node.high = {std::max(node.high.x, p.x), std::max(node.high.y, p.y),
                             std::max(node.high.z, p.z)};
            }
        }
    }
    void Split(int index) {
        Node node = nodes[index];
        if (node.count <= 4)
            return;
        Vec size = node.high - node.low;
        int axis = size.x > size.y && size.x > size.z ? 0 : size.y > size.z ? 1 : 2;
        auto middle = [axis](const Occluder& o) {
            Vec sum = o.corner[0] + o.corner[1] + o.corner[2];
            return axis == 0 ? sum.x : axis == 1 ? sum.y : sum.z;
        };
        auto begin = things.begin() + node.first;
        std::nth_element(
            begin, begin + node.count / 2, begin + node.count,
            [&](const Occluder& a, const Occluder& b) { return middle(a) < middle(b); });
        Node left{{}, {}, node.first, node.count / 2};
        Node right{{}, {}, node.first + node.count / 2, node.count - node.count / 2};
        Fit(left);
        Fit(right);
        int first = static_cast<int>(nodes.size());
        nodes.push_back(left);
        nodes.push_back(right);
        nodes[index].first = first;
        nodes[index].count = 0;
        Split(first);
        Split(first + 1);
    }
    void Build() {
        nodes.clear();
        nodes.push_back({{}, {}, 0, static_cast<int>(things.size())});
        Fit(nodes[0]);
        Split(0);
    }
    // The nearest thing within `reach`, which becomes its distance, or -1. With any part other than -1 only that part's
    // things count.
    int Hit(Vec from, Vec along, float& reach, int part, bool any) const {
        Vec inverse{1 / along.x, 1 / along.y, 1 / along.z};
        int stack[64], top = 0, best = -1;
        stack[top++] = 0;
        while (top > 0) {
            const Node& node = nodes[stack[--top]];
            float x0 = (node.low.x - from.x) * inverse.x, x1 = (node.high.x - from.x) * inverse.x;
            float y0 = (node.low.y - from.y) * inverse.y, y1 = (node.high.y - from.y) * inverse.y;
            float z0 = (node.low.z - from.z) * inverse.z, z1 = (node.high.z - from.z) * inverse.z;
            float near = std::max({std::min(x0, x1), std::min(y0, y1), std::min(z0, z1), 0.0F});
            float far = std::min({std::max(x0, x1), std::max(y0, y1), std::max(z0, z1), reach});
            if (near > far)
                continue;
            if (node.count == 0) {
                stack[top++] = node.first;
                stack[top++] = node.first + 1;
                continue;
            }
            for (int i = node.first; i < node.first + node.count; ++i) {
                const Occluder& o = things[i];
                if (part != -1 && o.part != part)
                    continue;
                Vec u = o.corner[1] - o.corner[0], v = o.corner[2] - o.corner[0],
                    p = Cross(along, v);
                float det = Dot(u, p);
                if (std::fabs(det) < 1e-12F)
                    continue;
                Vec t = from - o.corner[0];
                float a = Dot(t, p) / det;
                if (a < 0 || a > 1)
                    continue;
                Vec q = Cross(t, u);
                float b = Dot(along, q) / det, distance = Dot(v, q) / det;
                if (b < 0 || a + b > 1 || distance <= 1e-4F || distance >= reach)
                    continue;
                reach = distance;
                best = i;
                if (any)
                    return best;
            }
        }
        return best;
    }
};

struct Random {
    uint32_t state;
    float Next() {
        state = state * 747796405U + 2891336453U;
        uint32_t word = ((state >> ((state >> 28U) + 4U)) ^ state) * 277803737U;
        return static_cast<float>(((word >> 22U) ^ word) >> 8U) / 16777216.0F;
    }
};

struct Job {
    Tree tree;
    std::vector<Triangle> triangles;
    int rays = 64;
    Vec lamp;
    float lampRadius = 0, reach = 100, edgeReach = 1;
};

constexpr float kAtOnce = 4; // nearer than this nobody looks from

// Whether a ray that ended at `hit` could come from an eye.
static bool Seen(const Job& job, int hit, float distance, Vec along) {
    if (hit < 0)
        return true;
    const Occluder& o = job.tree.things[hit];
    bool inside =
        o.part >= 0 && Dot(along, Cross(o.corner[1] - o.corner[0], o.corner[2] - o.corner[0])) > 0;
    return distance > kAtOnce && !inside;
}

static void Shade(const Job& job, Texel& texel, uint32_t seed) {
    const Triangle& t = job.triangles[texel.triangle];
    float a = 1 - texel.b - texel.c;
    Vec at = t.corner[0] * a + t.corner[1] * texel.b + t.corner[2] * texel.c;
    Vec flat = Normal(Cross(t.corner[1] - t.corner[0], t.corner[2] - t.corner[0]));
    Vec normal = Normal(t.normal[0] * a + t.normal[1] * texel.b + t.normal[2] * texel.c);
    Vec side =
        Normal(std::fabs(normal.y) < 0.9F ? Cross(normal, {0, 1, 0}) : Cross(normal, {1, 0, 0}));
    Vec other = Cross(normal, side);
    Vec from = at + flat * 0.03F;
    Random random{seed * 9781U + 7U};
    float turn = random.Next();
    float sky = 0, lamp = 0, edge = 0, seen = 0;
    int lampRays = job.lampRadius > 0 ? job.rays / 4 : 0, edgeRays = job.rays / 4;
    for (int i = 0; i < job.rays; ++i) {
        float u = (static_cast<float>(i) + random.Next()) / static_cast<float>(job.rays);
        float v = static_cast<float>(i) * 0.61803399F + turn;
        float r = std::sqrt(u), angle = 6.2831853F * v;
        Vec along = side * (r * std::cos(angle)) + other * (r * std::sin(angle)) +
                    normal * std::sqrt(1 - u);
        if (Dot(along, flat) < 0)
            along = along - flat * (2 * Dot(along, flat));
        float distance = job.reach;
        int hit = job.tree.Hit(from, along, distance, -1, false);
        sky += hit < 0 ? 1 : job.tree.things[hit].returned;
        seen += Seen(job, hit, distance, along) ? 1.0F : 0.0F;
        if (i < edgeRays) {
            Vec inward = along - flat * (2 * Dot(along, flat));
            float near = job.edgeReach;
            edge += job.tree.Hit(at - flat * 0.02F, inward, near, t.part, true) >= 0 ? 1.0F : 0.0F;
        }
    }
    for (int i = 0; i < lampRays; ++i) {
        float z = 1 - 2 * ((static_cast<float>(i) + random.Next()) / static_cast<float>(lampRays));
        float angle = 6.2831853F * (static_cast<float>(i) * 0.61803399F + turn),
              r = std::sqrt(std::max(0.0F, 1 - z * z));
        Vec to =
            job.lamp + Vec{r * std::cos(angle), r * std::sin(angle), z} * job.lampRadius - from;
        float distance = std::sqrt(Dot(to, to));
        lamp += job.tree.Hit(from, to * (1 / distance), distance, -1, true) < 0 ? 1.0F : 0.0F;
    }
    texel.sky = sky / static_cast<float>(job.rays);
    texel.seen = seen / static_cast<float>(job.rays);
    texel.lamp = lampRays > 0 ? lamp / static_cast<float>(lampRays) : 1;
    texel.edge = edgeRays > 0 ? edge / static_cast<float>(edgeRays) : 0;
}

// What the first of many points of the triangle sees that sees anything; 0 if all are hidden.
static float Visible(const Job& job, int32_t number) {
    constexpr int kSteps = 12;
    for (int i = 0; i <= kSteps; ++i) {
        for (int k = 0; k <= kSteps - i; ++k) {
            auto place = [](int n) { return 0.005F + 0.985F * static_cast<float>(n) / kSteps; };
            Texel texel{number, place(i), place(k)};
            Shade(job, texel, static_cast<uint32_t>(number * 100 + i * 13 + k));
            if (texel.seen > 0)
                return texel.seen;
        }
    }
    return 0;
}

struct Page {
    int width = 0, height = 0;
    std::vector<Texel> texels;
};

// Gives each texel whose middle lies in a triangle its place there. With a margin, free texels up to so far outside take
// the nearest place inside: a slim chart would have none else, and filters read past a chart's border.
static void Raster(const Job& job, std::vector<Page>& pages, float margin) {
    for (size_t n = 0; n < job.triangles.size(); ++n) {
        const Triangle& t = job.triangles[n];
        Page& page = pages[t.page];
        const float* p = t.place;
        float det = (p[2] - p[0]) * (p[5] - p[1]) - (p[4] - p[0]) * (p[3] - p[1]);
        if (det == 0)
            continue;
        int x0 = std::max(0, static_cast<int>(std::min({p[0], p[2], p[4]}) - 1 - margin));
        int x1 =
            std::min(page.width - 1, static_cast<int>(std::max({p[0], p[2], p[4]}) + 1 + margin));
        int y0 = std::max(0, static_cast<int>(std::min({p[1], p[3], p[5]}) - 1 - margin));
        int y1 =
            std::min(page.height - 1, static_cast<int>(std::max({p[1], p[3], p[5]}) + 1 + margin));
        for (int y = y0; y <= y1; ++y) {
            for (int x = x0; x <= x1; ++x) {
                float px = static_cast<float>(x) + 0.5F - p[0],
                      py = static_cast<float>(y) + 0.5F - p[1];
                float b = (px * (p[5] - p[1]) - (p[4] - p[0]) * py) / det;
                float c = ((p[2] - p[0]) * py - px * (p[3] - p[1])) / det;
                Texel& texel = page.texels[static_cast<size_t>(y) * page.width + x];
                if (b < -1e-4F || c < -1e-4F || b + c > 1.0001F) {
                    if (margin == 0 || texel.triangle >= 0)
                        continue;
                    b = std::max(b, 0.0F);
                    c = std::max(c, 0.0F);
                    float sum = std::max(1.0F, b + c);
                    b /= sum;
                    c /= sum;
                    float offX = px - b * (p[2] - p[0]) - c * (p[4] - p[0]),
                          offY = py - b * (p[3] - p[1]) - c * (p[5] - p[1]);
                    if (offX * offX + offY * offY > margin * margin)
                        continue;
                }
                texel.triangle = static_cast<int32_t>(n);
                texel.b = b;
                texel.c = c;
            }
        }
    }
}

// One texel of each chart in a block of two by two is worked out; the rest, and its noise, come from its neighbours.
static void Light(const Job& job, Page& page) {
    std::vector<uint8_t> done(page.texels.size(), 0);
    std::vector<size_t> todo;
    for (int y = 0; y < page.height; y += 2) {
        for (int x = 0; x < page.width; x += 2) {
            int32_t charts[4], known = 0;
            for (int k = 0; k < 4; ++k) {
                int u = x + (k & 1), v = y + (k >> 1);
                if (u >= page.width || v >= page.height)
                    continue;
                size_t at = static_cast<size_t>(v) * page.width + u;
                if (page.texels[at].triangle < 0)
                    continue;
                int32_t chart = job.triangles[page.texels[at].triangle].chart;
                if (std::find(charts, charts + known, chart) != charts + known)
                    continue;
                charts[known++] = chart;
                todo.push_back(at);
                done[at] = 1;
            }
        }
    }
    std::vector<std::thread> threads;
    for (size_t k = 0; k < 2; ++k) {
        threads.emplace_back([&, k] {
            for (size_t i = k; i < todo.size(); i += 2)
                Shade(job, page.texels[todo[i]], static_cast<uint32_t>(todo[i]));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    std::vector<Texel> rough = page.texels;
    for (int y = 0; y < page.height; ++y) {
        for (int x = 0; x < page.width; ++x) {
            Texel& texel = page.texels[static_cast<size_t>(y) * page.width + x];
            if (texel.triangle < 0)
                continue;
            float sky = 0, lamp = 0, edge = 0, seen = 0, total = 0;
            for (int v = std::max(0, y - 3); v <= std::min(page.height - 1, y + 3); ++v) {
                for (int u = std::max(0, x - 3); u <= std::min(page.width - 1, x + 3); ++u) {
                    size_t at = static_cast<size_t>(v) * page.width + u;
                    if (!done[at] || job.triangles[rough[at].triangle].chart !=
                                         job.triangles[texel.triangle].chart)
                        continue;
                    // What is hidden does not darken what is seen beside it.
                    float share = std::min(1.0F, 0.02F + rough[at].seen * 8);
                    auto away = static_cast<float>((u - x) * (u - x) + (v - y) * (v - y));
                    float weight = std::exp(-away / 4.5F) * share;
                    sky += rough[at].sky * weight;
                    lamp += rough[at].lamp * weight;
                    edge += rough[at].edge * weight;
                    seen += rough[at].seen * weight;
                    total += weight;
                }
            }
            if (total > 0) {
                texel.sky = sky / total;
                texel.lamp = lamp / total;
                texel.edge = edge / total;
                texel.seen = seen / total;
            }
        }
    }
}

static void Need(bool good) {
    if (!good) {
        std::fprintf(stderr, "bake: the input ends early\n");
        std::exit(1);
    }
}

int main(int count, char** arguments) {
    if (count != 3)
        return 2;
    FILE* in = std::fopen(arguments[1], "rb");
    Need(in != nullptr);
    int32_t sizes[4];
    float numbers[6];
    Need(std::fread(sizes, 4, 4, in) == 4 && std::fread(numbers, 4, 6, in) == 6);
    Job job;
    job.rays = sizes[3];
    job.lamp = {numbers[0], numbers[1], numbers[2]};
    job.lampRadius = numbers[3];
    job.reach = numbers[4];
    job.edgeReach = numbers[5];
    static_assert(sizeof(Occluder) == 44 && sizeof(Triangle) == 108, "the file's records");
    job.tree.things.resize(static_cast<size_t>(sizes[0]));
    job.triangles.resize(static_cast<size_t>(sizes[1]));
    Need(std::fread(job.tree.things.data(), sizeof(Occluder), job.tree.things.size(), in) ==
         job.tree.things.size());
    Need(std::fread(job.triangles.data(), sizeof(Triangle), job.triangles.size(), in) ==
         job.triangles.size());
    std::vector<Page> pages(static_cast<size_t>(sizes[2]));
    for (Page& page : pages) {
        int32_t size[2];
        Need(std::fread(size, 4, 2, in) == 2);
        page.width = size[0];
        page.height = size[1];
        page.texels.resize(static_cast<size_t>(size[0]) * size[1]);
    }
    std::fclose(in);
    job.tree.Build();
    FILE* out = std::fopen(arguments[2], "wb");
    if (out == nullptr)
        return 1;
    if (pages.empty()) {
        std::vector<float> seen(job.triangles.size());
        std::vector<std::thread> threads;
        for (size_t k = 0; k < 2; ++k) {
            threads.emplace_back([&, k] {
                for (size_t i = k; i < seen.size(); i += 2)
                    seen[i] = Visible(job, static_cast<int32_t>(i));
            });
        }
        for (std::thread& thread : threads)
            thread.join();
        std::fwrite(seen.data(), sizeof(float), seen.size(), out);
        return std::fclose(out) == 0 ? 0 : 1;
    }
    Raster(job, pages, 0);
    Raster(job, pages, 1.5F);
    for (Page& page : pages) {
        Light(job, page);
        std::fwrite(page.texels.data(), sizeof(Texel), page.texels.size(), out);
    }
    return std::fclose(out) == 0 ? 0 : 1;
}
