// Repaints a picture with brush strokes, from broad to fine, each layer only where the canvas still differs from it.
// brush IN OUT WIDTH HEIGHT SEED ANGLE RADIUS...: raw RGB floats in and out; ANGLE in degrees is the way of the strokes
// where the picture has no edge to follow.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

struct Colour {
    float r, g, b;
};

struct Point {
    float x, y;
};

int gWidth, gHeight;
uint32_t gState;

float Random() {
    gState ^= gState << 13;
    gState ^= gState >> 17;
    gState ^= gState << 5;
    return static_cast<float>(gState >> 8) / 16777216.0F;
}

template <typename T>
using Field = std::vector<T>;

size_t At(int x, int y) {
    return static_cast<size_t>(std::clamp(y, 0, gHeight - 1)) * static_cast<size_t>(gWidth) +
           static_cast<size_t>(std::clamp(x, 0, gWidth - 1));
}

float Difference(Colour a, Colour b) {
    return std::abs(a.r - b.r) + std::abs(a.g - b.g) + std::abs(a.b - b.b);
}

// Three passes of a box, which come close to a Gaussian of deviation `radius`.
void Blur(Field<float>& field, float radius) {
    const int half = std::max(1, static_cast<int>(radius));
    Field<float> other(field.size());
    for (int pass = 0; pass < 3; ++pass) {
        for (int y = 0; y < gHeight; ++y) {
            float sum = 0;
            for (int x = -half; x <= half; ++x)
                sum += field[At(x, y)];
            for (int x = 0; x < gWidth; ++x) {
                other[At(x, y)] = sum / static_cast<float>(2 * half + 1);
                sum += field[At(x + half + 1, y)] - field[At(x - half, y)];
            }
        }
        for (int x = 0; x < gWidth; ++x) {
            float sum = 0;
            for (int y = -half; y <= half; ++y)
                sum += other[At(x, y)];
            for (int y = 0; y < gHeight; ++y) {
                field[At(x, y)] = sum / static_cast<float>(2 * half + 1);
                sum += other[At(x, y + half + 1)] - other[At(x, y - half)];
            }
        }
    }
}

Field<Colour> Blurred(const Field<Colour>& picture, float radius) {
    Field<float> parts[3];
    for (auto& part : parts)
        part.resize(picture.size());
    for (size_t i = 0; i < picture.size(); ++i) {
        parts[0][i] = picture[i].r;
        parts[1][i] = picture[i].g;
        parts[2][i] = picture[i].b;
    }
    for (auto& part : parts)
        Blur(part, radius);
    Field<Colour> out(picture.size());
    for (size_t i = 0; i < picture.size(); ++i)
        out[i] = {parts[0][i], parts[1][i], parts[2][i]};
    return out;
}

// The way along the edges: the weaker direction of the smoothed structure tensor, and `angle` where there are none.
Field<Point> Ways(const Field<Colour>& picture, float radius, float angle) {
    Field<float> xx(picture.size()), xy(picture.size()), yy(picture.size());
    const auto light = [&](int x, int y) {
        const Colour c = picture[At(x, y)];
        return 0.3F * c.r + 0.6F * c.g + 0.1F * c.b;
    };
    for (int y = 0; y < gHeight; ++y)
        for (int x = 0; x < gWidth; ++x) {
            const float gx = light(x + 1, y) - light(x - 1, y),
                        gy = light(x, y + 1) - light(x, y - 1);
            xx[At(x, y)] = gx * gx;
            xy[At(x, y)] = gx * gy;
            yy[At(x, y)] = gy * gy;
        }
    for (auto* field : {&xx, &xy, &yy})
        Blur(*field, radius);
    Field<Point> ways(picture.size());
    const float pull = 2e-5F;
    for (size_t i = 0; i < ways.size(); ++i) {
        // The default way joins the tensor as a weak edge of its own.
        const float nx = -std::sin(angle), ny = std::cos(angle);
        const float a = xx[i] + pull * nx * nx, b = xy[i] + pull * nx * ny,
                    c = yy[i] + pull * ny * ny;
        const float turn = 0.5F * std::atan2(2 * b, a - c) + 1.5707963F;
        ways[i] = {std::cos(turn), std::sin(turn)};
    }
    return ways;
}

struct Canvas {
    Field<Colour> colours;
    Field<float> relief;
};

struct Stroke {
    std::vector<Point> points;
    Colour colour;
    float radius;
};

// Where the nearest point of the stroke is: how far along, how far aside, how far away.
void Nearest(const Stroke& stroke, Point p, float& along, float& aside, float& away) {
    away = 1e9F;
    float before = 0;
    for (size_t i = 0; i + 1 < stroke.points.size(); ++i) {
        const Point a = stroke.points[i], b = stroke.points[i + 1];
        const float dx = b.x - a.x, dy = b.y - a.y,
                    length = std::max(1e-3F, std::sqrt(dx * dx + dy * dy));
        const float t =
            std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / (length * length), 0.0F, 1.0F);
        const float ex = p.x - a.x - t * dx, ey = p.y - a.y - t * dy,
                    distance = std::sqrt(ex * ex + ey * ey);
        if (distance < away) {
            away = distance;
            aside = (dx * ey - dy * ex) / length;
            along = before + t * length;
        }
        before += length;
    }
}

void Draw(Canvas& canvas, const Stroke& stroke) {
    float left = 1e9F, right = -1e9F, top = 1e9F, bottom = -1e9F, length = 0;
    for (size_t i = 0; i < stroke.points.size(); ++i) {
        const Point p = stroke.points[i];
        left = std::min(left, p.x);
        right = std::max(right, p.x);
        top = std::min(top, p.y);
        bottom = std::max(bottom, p.y);
        if (i > 0)
            length += std::hypot(p.x - stroke.points[i - 1].x, p.y - stroke.points[i - 1].y);
    }
    const float r = stroke.radius;
    float bristles[17];
    for (float& bristle : bristles)
        bristle = Random();
    const int x1 = std::min(gWidth - 1, static_cast<int>(right + r + 1)),
              y1 = std::min(gHeight - 1, static_cast<int>(bottom + r + 1));
    for (int y = std::max(0, static_cast<int>(top - r - 1)); y <= y1; ++y)
        for (int x = std::max(0, static_cast<int>(left - r - 1)); x <= x1; ++x) {
            float along = 0, aside = 0, away = 0;
            Nearest(stroke, {static_cast<float>(x), static_cast<float>(y)}, along, aside, away);
            if (away >= r)
                continue;
            const float place = std::clamp((aside / r + 1) * 8, 0.0F, 15.99F);
            const int n = static_cast<int>(place);
            const float part = place - static_cast<float>(n);
            const float bristle = bristles[n] * (1 - part) + bristles[n + 1] * part;
            // Paint thins out towards the end, bristle by bristle.
            const float dry =
                std::clamp((1.25F - along / (length + r)) * 3 - bristle * 1.2F, 0.0F, 1.0F);
            const float edge = std::clamp((r - away) / std::max(1.0F, r * 0.18F), 0.0F, 1.0F);
            const float alpha = 0.95F * edge * (0.35F + 0.65F * dry);
            const float tone = (bristle - 0.5F) * 0.05F;
            Colour& c = canvas.colours[At(x, y)];
            c.r += (stroke.colour.r + tone - c.r) * alpha;
            c.g += (stroke.colour.g + tone - c.g) * alpha;
            c.b += (stroke.colour.b + tone - c.b) * alpha;
            float& h = canvas.relief[At(x, y)];
            h += (bristle * (1 - 0.5F * away / r) - h) * alpha;
        }
}

Stroke Follow(const Field<Colour>& wanted, const Canvas& canvas, const Field<Point>& ways, Point p,
              float radius) {
    Stroke stroke{{p}, wanted[At(static_cast<int>(p.x), static_cast<int>(p.y))], radius};
    Point last{0, 0};
    const float turn = Random() < 0.5F ? -1.0F : 1.0F;
    for (int n = 0; n < 7; ++n) {
        Point way = ways[At(static_cast<int>(p.x), static_cast<int>(p.y))];
        const float sign = n == 0 ? turn : (way.x * last.x + way.y * last.y < 0 ? -1.0F : 1.0F);
        way = {way.x * sign, way.y * sign};
        p = {p.x + way.x * radius * 1.1F, p.y + way.y * radius * 1.1F};
        if (p.x < -radius || p.y < -radius || p.x > static_cast<float>(gWidth) + radius ||
            p.y > static_cast<float>(gHeight) + radius)
            break;
        const size_t here = At(static_cast<int>(p.x), static_cast<int>(p.y));
        if (n > 0 && Difference(wanted[here], stroke.colour) >
                         std::max(0.06F, Difference(wanted[here], canvas.colours[here])))
            break;
        stroke.points.push_back(p);
        last = way;
    }
    if (stroke.points.size() == 1)
        stroke.points.push_back(p);
    const float shift = (Random() - 0.5F) * 0.045F;
    stroke.colour.r += shift + (Random() - 0.5F) * 0.02F;
    stroke.colour.g += shift + (Random() - 0.5F) * 0.02F;
    stroke.colour.b += shift + (Random() - 0.5F) * 0.02F;
    return stroke;
}

void PaintLayer(const Field<Colour>& picture, Canvas& canvas, float radius, float angle,
                bool first) {
    const Field<Colour> wanted = Blurred(picture, radius * 0.35F);
    const Field<Point> ways = Ways(wanted, radius * 1.5F + 1, angle);
    const int grid = std::max(2, static_cast<int>(std::lround(radius * 0.9F)));
    std::vector<Point> starts;
    for (int y = 0; y < gHeight; y += grid)
        for (int x = 0; x < gWidth; x += grid) {
            // In each field of the grid the stroke starts where the canvas is most wrong.
            Point worst{};
            float sum = 0, most = -1;
            for (int n = 0; n < grid * grid; ++n) {
                const int px = x + n % grid, py = y + n / grid;
                const size_t i = At(px, py);
                const float wrong = Difference(wanted[i], canvas.colours[i]);
                sum += wrong;
                if (wrong > most) {
                    most = wrong;
                    worst = {static_cast<float>(px), static_cast<float>(py)};
                }
            }
            if (first || sum / static_cast<float>(grid * grid) > 0.085F)
                starts.push_back(worst);
        }
    for (size_t i = starts.size(); i > 1; --i)
        std::swap(starts[i - 1],
                  starts[std::min(i - 1, static_cast<size_t>(Random() * static_cast<float>(i)))]);
    for (const Point start : starts)
        Draw(canvas, Follow(wanted, canvas, ways, start, radius));
}

// Light from the upper left on the relief of the paint.
void Light(Canvas& canvas) {
    Field<Colour> lit = canvas.colours;
    for (int y = 0; y < gHeight; ++y)
        for (int x = 0; x < gWidth; ++x) {
            const float slope = canvas.relief[At(x - 1, y - 1)] - canvas.relief[At(x + 1, y + 1)];
            const float light = std::clamp(1 - slope * 0.09F, 0.9F, 1.1F);
            Colour& c = lit[At(x, y)];
            c = {c.r * light, c.g * light, c.b * light};
        }
    canvas.colours = lit;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 8)
        return 2;
    gWidth = std::atoi(argv[3]);
    gHeight = std::atoi(argv[4]);
    gState = static_cast<uint32_t>(std::atoi(argv[5])) * 2654435761U + 12345U;
    const float angle = static_cast<float>(std::atof(argv[6])) * 3.14159265F / 180;
    Field<Colour> picture(static_cast<size_t>(gWidth) * static_cast<size_t>(gHeight));
    FILE* in = std::fopen(argv[1], "rb");
    if (!in || std::fread(picture.data(), sizeof(Colour), picture.size(), in) != picture.size())
        return 1;
    std::fclose(in);
    Canvas canvas{Blurred(picture, 20), Field<float>(picture.size(), 0.5F)};
    for (int i = 7; i < argc; ++i)
        PaintLayer(picture, canvas, static_cast<float>(std::atof(argv[i])), angle, i == 7);
    Light(canvas);
    FILE* out = std::fopen(argv[2], "wb");
    if (!out || std::fwrite(canvas.colours.data(), sizeof(Colour), canvas.colours.size(), out) !=
                    canvas.colours.size())
        return 1;
    return std::fclose(out) == 0 ? 0 : 1;
}
