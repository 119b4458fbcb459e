// Draws a list of triangles with the room's own light formula, four samples a pixel. Started by `preview`.
//
//   raster IN OUT
//   IN:  i32 width, height, textures, materials, triangles, lights; f32 eye, right, up, ahead (3 each), tangent of half the
//        vertical angle; per texture i32 width, height, then RGB bytes from the top; per material i32 texture (-1: none),
//        f32 diffuse 3, specular 3, shininess, glow, screen brightness (0: no screen); per light f32 spot (0, 1), place 3,
//        direction 3, colour 3, specular 3, constant, linear, quadratic, cosine, ball; per triangle i32 material, then three
//        points of f32 place 3, normal 3, u, v
//   OUT: a PPM picture
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
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
static Vec operator*(Vec a, Vec b) {
    return {a.x * b.x, a.y * b.y, a.z * b.z};
}
static float Dot(Vec a, Vec b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
static Vec Normal(Vec a) {
    float length = std::sqrt(Dot(a, a));
    return length > 0 ? a * (1 / length) : a;
}

struct Level {
    int width = 0, height = 0;
    std::vector<float> rgb;
    Vec At(int x, int y) const {
        x = ((x % width) + width) % width;
        y = ((y % height) + height) % height;
        const float* p = &rgb[(static_cast<size_t>(y) * width + x) * 3];
        return {p[0], p[1], p[2]};
    }
    Vec Read(float u, float v) const {
        float x = u * static_cast<float>(width) - 0.5F, y = v * static_cast<float>(height) - 0.5F;
        int i = static_cast<int>(std::floor(x)), j = static_cast<int>(std::floor(y));
        float fx = x - static_cast<float>(i), fy = y - static_cast<float>(j);
        return (At(i, j) * (1 - fx) + At(i + 1, j) * fx) * (1 - fy) +
               (At(i, j + 1) * (1 - fx) + At(i + 1, j + 1) * fx) * fy;
    }
};
using Texture = std::vector<Level>;

struct Material {
    int32_t texture = -1;
    Vec diffuse, specular;
    float shininess = 0, glow = 0, screen = 0;
};
struct Light {
    float spot = 0;
    Vec place, direction, colour, specular;
    float constant = 1, linear = 0, quadratic = 0, cosine = 0, ball = 0;
};
struct Point {
    Vec place, normal;
    float u = 0, v = 0;
};
struct Triangle {
    int32_t material = 0;
    Point point[3];
};
struct Camera {
    Vec eye, right, up, ahead;
    float tangent = 0;
};

static Point Between(const Point& a, const Point& b, float t) {
    return {a.place + (b.place - a.place) * t, a.normal + (b.normal - a.normal) * t,
            a.u + (b.u - a.u) * t, a.v + (b.v - a.v) * t};
}

struct Scene {
    int width = 0, height = 0;
    Camera camera;
    std::vector<Texture> textures;
    std::vector<Material> materials;
    std::vector<Light> lights;
    std::vector<Triangle> triangles;
};

static Vec Shade(const Scene& scene, const Material& m, Vec place, Vec normal, Vec texel) {
    Vec base = texel + m.diffuse + Vec{m.glow, m.glow, m.glow};
    Vec result;
    float factor = 1;
    if (m.screen != 0) {
        result = base * m.screen;
        factor = 0.3F;
    }
    Vec n = Normal(normal);
    for (const Light& light : scene.lights) {
        Vec to = light.place - place;
        float d = std::sqrt(Dot(to, to));
        Vec l = to * (1 / d);
        float att = factor / (light.constant + light.linear * d + light.quadratic * d * d);
        float shiny = m.shininess;
        if (light.spot != 0) {
            if (Dot(l * -1, light.direction) <= light.cosine) {
                if (d > light.ball) {
                    result =
                        result + light.colour * base * (0.5F * std::clamp(att * 4, 0.0F, 0.2F));
                    continue;
                }
                att *= 5;
                shiny = 0;
            }
        } else {
            result = result + base * (0.5F * att);
        }
        float lambert = std::max(Dot(n, l), 0.0F);
        if (lambert <= 0)
            continue;
        result = result + light.colour * base * (lambert * att);
        if (shiny != 0) {
            Vec e = Normal(scene.camera.eye - place), r = n * (2 * Dot(n, l)) - l;
            result = result + light.specular * m.specular *
                                  (std::pow(std::max(Dot(r, e), 0.0F), m.shininess) * att);
        }
    }
    return result;
}

static void Draw(const Scene& scene, int top, int bottom, std::vector<Vec>& picture) {
    int w = scene.width, h = scene.height;
    const Camera& c = scene.camera;
    std::vector<float> depth(static_cast<size_t>(w) * (bottom - top), 1e30F);
    for (const Triangle& t : scene.triangles) {
        // Cut at the near plane.
        std::vector<Point> shape;
        for (int k = 0; k < 3; ++k) {
            const Point &a = t.point[k], &b = t.point[(k + 1) % 3];
            float za = Dot(a.place - c.eye, c.ahead) - 5, zb = Dot(b.place - c.eye, c.ahead) - 5;
            if (za >= 0)
                shape.push_back(a);
            if ((za >= 0) != (zb >= 0))
                shape.push_back(Between(a, b, za / (za - zb)));
        }
        const Material& m = scene.materials[t.material];
        for (size_t k = 2; k < shape.size(); ++k) {
            const Point* p[3] = {&shape[0], &shape[k - 1], &shape[k]};
            float x[3], y[3], q[3];
            for (int i = 0; i < 3; ++i) {
                Vec v = p[i]->place - c.eye;
                q[i] = 1 / Dot(v, c.ahead);
                float scale = static_cast<float>(h) / (2 * c.tangent);
                x[i] = static_cast<float>(w) * 0.5F + Dot(v, c.right) * q[i] * scale;
                y[i] = static_cast<float>(h) * 0.5F - Dot(v, c.up) * q[i] * scale;
            }
            float det = (x[1] - x[0]) * (y[2] - y[0]) - (x[2] - x[0]) * (y[1] - y[0]);
            if (std::fabs(det) < 1e-9F)
                continue;
            int x0 = std::max(0, static_cast<int>(std::floor(std::min({x[0], x[1], x[2]}))));
            int x1 = std::min(w - 1, static_cast<int>(std::ceil(std::max({x[0], x[1], x[2]}))));
            int y0 = std::max(top, static_cast<int>(std::floor(std::min({y[0], y[1], y[2]}))));
            int y1 =
                std::min(bottom - 1, static_cast<int>(std::ceil(std::max({y[0], y[1], y[2]}))));
            auto weights = [&](float px, float py, float* out) {
                out[1] = ((px - x[0]) * (y[2] - y[0]) - (x[2] - x[0]) * (py - y[0])) / det;
                out[2] = ((x[1] - x[0]) * (py - y[0]) - (px - x[0]) * (y[1] - y[0])) / det;
                out[0] = 1 - out[1] - out[2];
            };
            auto mixed = [&](const float* a) {
                float total = a[0] * q[0] + a[1] * q[1] + a[2] * q[2];
                float i = a[0] * q[0] / total, j = a[1] * q[1] / total, l = a[2] * q[2] / total;
                return Point{p[0]->place * i + p[1]->place * j + p[2]->place * l,
                             p[0]->normal * i + p[1]->normal * j + p[2]->normal * l,
                             p[0]->u * i + p[1]->u * j + p[2]->u * l,
                             p[0]->v * i + p[1]->v * j + p[2]->v * l};
            };
            for (int py = y0; py <= y1; ++py) {
                for (int px = x0; px <= x1; ++px) {
                    float a[3];
                    float fx = static_cast<float>(px) + 0.5F, fy = static_cast<float>(py) + 0.5F;
                    weights(fx, fy, a);
                    if (a[0] < 0 || a[1] < 0 || a[2] < 0)
                        continue;
                    float z = 1 / (a[0] * q[0] + a[1] * q[1] + a[2] * q[2]);
                    float& nearest = depth[static_cast<size_t>(py - top) * w + px];
                    if (z >= nearest)
                        continue;
                    nearest = z;
                    Point at = mixed(a);
                    Vec texel;
                    if (m.texture >= 0) {
                        const Texture& levels = scene.textures[m.texture];
                        weights(fx + 1, fy, a);
                        Point across = mixed(a);
                        weights(fx, fy + 1, a);
                        Point down = mixed(a);
                        auto tw = static_cast<float>(levels[0].width),
                             th = static_cast<float>(levels[0].height);
                        float ax = std::hypot((across.u - at.u) * tw, (across.v - at.v) * th);
                        float dy = std::hypot((down.u - at.u) * tw, (down.v - at.v) * th);
                        float size = std::max(std::min(ax, dy), std::max(ax, dy) / 4);
                        float level = std::clamp(std::log2(std::max(size, 1.0F)), 0.0F,
                                                 static_cast<float>(levels.size()) - 1.001F);
                        auto low = static_cast<size_t>(level);
                        float part = level - static_cast<float>(low);
                        texel = levels[low].Read(at.u, at.v) * (1 - part);
                        if (low + 1 < levels.size())
                            texel = texel + levels[low + 1].Read(at.u, at.v) * part;
                    }
                    picture[static_cast<size_t>(py) * w + px] =
                        Shade(scene, m, at.place, at.normal, texel);
                }
            }
        }
    }
}

static void Need(bool good) {
    if (!good) {
        std::fprintf(stderr, "raster: the input ends early\n");
        std::exit(1);
    }
}
template <typename T>
static T Take(FILE* in) {
    T value;
    Need(std::fread(&value, sizeof value, 1, in) == 1);
    return value;
}

static Texture Loaded(FILE* in) {
    Level level;
    level.width = Take<int32_t>(in);
    level.height = Take<int32_t>(in);
    std::vector<uint8_t> bytes(static_cast<size_t>(level.width) * level.height * 3);
    Need(std::fread(bytes.data(), 1, bytes.size(), in) == bytes.size());
    level.rgb.assign(bytes.begin(), bytes.end());
    for (float& value : level.rgb)
        value /= 255;
    Texture texture{level};
    while (texture.back().width > 1 && texture.back().height > 1) {
        const Level& big = texture.back();
        Level small{big.width / 2, big.height / 2, {}};
        small.rgb.resize(static_cast<size_t>(small.width) * small.height * 3);
        for (int y = 0; y < small.height; ++y) {
            for (int x = 0; x < small.width; ++x) {
                Vec sum = big.At(2 * x, 2 * y) + big.At(2 * x + 1, 2 * y) +
                          big.At(2 * x, 2 * y + 1) + big.At(2 * x + 1, 2 * y + 1);
                float* p = &small.rgb[(static_cast<size_t>(y) * small.width + x) * 3];
                p[0] = sum.x / 4;
                p[1] = sum.y / 4;
                p[2] = sum.z / 4;
            }
        }
        texture.push_back(small);
    }
    return texture;
}

int main(int count, char** arguments) {
    if (count != 3)
        return 2;
    FILE* in = std::fopen(arguments[1], "rb");
    Need(in != nullptr);
    Scene scene;
    scene.width = Take<int32_t>(in) * 2;
    scene.height = Take<int32_t>(in) * 2;
    auto textures = Take<int32_t>(in), materials = Take<int32_t>(in), triangles = Take<int32_t>(in),
         lights = Take<int32_t>(in);
    scene.camera = Take<Camera>(in);
    for (int i = 0; i < textures; ++i)
        scene.textures.push_back(Loaded(in));
    for (int i = 0; i < materials; ++i)
        scene.materials.push_back(Take<Material>(in));
    for (int i = 0; i < lights; ++i)
        scene.lights.push_back(Take<Light>(in));
    for (int i = 0; i < triangles; ++i)
        scene.triangles.push_back(Take<Triangle>(in));
    std::fclose(in);
    std::vector<Vec> picture(static_cast<size_t>(scene.width) * scene.height);
    std::thread other([&] { Draw(scene, 0, scene.height / 2, picture); });
    Draw(scene, scene.height / 2, scene.height, picture);
    other.join();
    FILE* out = std::fopen(arguments[2], "wb");
    if (out == nullptr)
        return 1;
    std::fprintf(out, "P6\n%d %d\n255\n", scene.width / 2, scene.height / 2);
    auto byte = [](float v) {
        return static_cast<uint8_t>(std::clamp(v, 0.0F, 1.0F) * 255 + 0.5F);
    };
    for (int y = 0; y < scene.height; y += 2) {
        for (int x = 0; x < scene.width; x += 2) {
            Vec sum;
            for (int k = 0; k < 4; ++k) {
                Vec p = picture[static_cast<size_t>(y + (k >> 1)) * scene.width + x + (k & 1)];
                sum = sum + Vec{std::min(p.x, 1.0F), std::min(p.y, 1.0F), std::min(p.z, 1.0F)};
            }
            uint8_t rgb[3] = {byte(sum.x / 4), byte(sum.y / 4), byte(sum.z / 4)};
            std::fwrite(rgb, 1, 3, out);
        }
    }
    return std::fclose(out) == 0 ? 0 : 1;
}
