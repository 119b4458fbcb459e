#include "gui/surface.h"

#include "gui/bitmap.h"
#include "gui/blend.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace {

constexpr int32_t kMostPixels = 16384; // a side of a surface

float Channel(uint32_t argb, uint32_t shift) {
    return static_cast<float>(argb >> shift & 0xFF);
}

// A colour that moves by a step of its own in each channel.
class Ramp {
public:
    Ramp(uint32_t from, uint32_t to, int32_t steps) {
        for (size_t i = 0; i < 4; ++i) {
            const auto shift = static_cast<uint32_t>(i * 8);
            value[i] = Channel(from, shift);
            step[i] = (Channel(to, shift) - value[i]) / static_cast<float>(steps);
        }
    }

    uint32_t Next() {
        uint32_t argb = 0;
        for (size_t i = 0; i < 4; ++i) {
            value[i] += step[i];
            const float bounded = std::clamp(value[i], 0.0f, 255.0f);
            argb |= static_cast<uint32_t>(bounded) << (i * 8);
        }
        return argb;
    }

    // The steps that no surface is large enough to show are made at once.
    void Skip(int32_t steps) {
        const auto many = static_cast<float>(std::max(steps - kMostPixels, 0));
        for (size_t i = 0; i < 4; ++i) {
            value[i] += step[i] * many;
        }
        for (int32_t i = std::max(steps - kMostPixels, 0); i < steps; ++i) {
            Next();
        }
    }

private:
    std::array<float, 4> value{};
    std::array<float, 4> step{};
};

} // namespace

int32_t PixelEdge(int32_t units, double density) {
    return static_cast<int32_t>(std::floor(units * density + 0.5));
}

bool CGhostSurface::Create(const GUI_RECT& place, double pixelsPerUnit) {
    stackDepth = 0;
    density = pixelsPerUnit;
    area = place;
    pixelLeft = PixelEdge(place.x, density);
    pixelTop = PixelEdge(place.y, density);
    pixelWidth = std::max(1, PixelEdge(place.Right(), density) - pixelLeft);
    pixelHeight = std::max(1, PixelEdge(place.Bottom(), density) - pixelTop);
    clip = {0, 0, pixelWidth, pixelHeight};
    pixels.reset();
    oneColour = 0;
    return !place.Empty() && pixelWidth <= kMostPixels && pixelHeight <= kMostPixels;
}

bool CGhostSurface::MakePixels() {
    if (!oneColour) {
        return true;
    }
    const size_t count = static_cast<size_t>(pixelWidth) * static_cast<size_t>(pixelHeight);
    const bool isNew = pixels == nullptr;
    if (isNew) {
        pixels.reset(static_cast<uint32_t*>(std::calloc(count, sizeof(uint32_t))));
        if (pixels == nullptr) {
            return false;
        }
    }
    if (!isNew || *oneColour != 0) {
        std::fill_n(pixels.get(), count, *oneColour);
    }
    oneColour.reset();
    return true;
}

void CGhostSurface::FREE::operator()(uint32_t* memory) const {
    std::free(memory);
}

void CGhostSurface::PushOrigin(const GUI_RECT& rect) {
    if (stackDepth < stack.size()) {
        stack[stackDepth] = {area, clip};
        const GUI_RECT wanted = rect.Moved(area.x, area.y);
        clip = Clipped(ToPixels(rect));
        area = wanted;
    }
    ++stackDepth;
}

void CGhostSurface::PopOrigin() {
    if (stackDepth > 0 && --stackDepth < stack.size()) {
        area = stack[stackDepth].area;
        clip = stack[stackDepth].clip;
    }
}

PIXEL_RECT CGhostSurface::ToPixels(const GUI_RECT& rect) const {
    if (rect.Empty()) {
        return {};
    }
    const int32_t left = PixelEdge(area.x + rect.x, density) - pixelLeft;
    const int32_t top = PixelEdge(area.y + rect.y, density) - pixelTop;
    // What is one unit wide is at least one pixel wide.
    return {left, top, std::max(left + 1, PixelEdge(area.x + rect.Right(), density) - pixelLeft),
            std::max(top + 1, PixelEdge(area.y + rect.Bottom(), density) - pixelTop)};
}

PIXEL_RECT CGhostSurface::Clipped(const PIXEL_RECT& rect) const {
    if (stackDepth > stack.size()) {
        return {};
    }
    return {std::max(rect.left, clip.left), std::max(rect.top, clip.top),
            std::min(rect.right, clip.right), std::min(rect.bottom, clip.bottom)};
}

GUI_RECT CGhostSurface::Visible() const {
    const PIXEL_RECT seen = Clipped(clip);
    if (seen.Empty()) {
        return {};
    }
    const auto before = [this](int32_t pixel) {
        return static_cast<int32_t>(std::floor((pixel - 1) / density));
    };
    const auto after = [this](int32_t pixel) {
        return static_cast<int32_t>(std::ceil((pixel + 1) / density));
    };
    const int32_t left = before(pixelLeft + seen.left);
    const int32_t top = before(pixelTop + seen.top);
    return {left - area.x, top - area.y, after(pixelLeft + seen.right) - left,
            after(pixelTop + seen.bottom) - top};
}

int32_t CGhostSurface::PixelX(double units) const {
    return static_cast<int32_t>(std::floor((area.x + units) * density + 0.5)) - pixelLeft;
}

int32_t CGhostSurface::PixelY(double units) const {
    return static_cast<int32_t>(std::floor((area.y + units) * density + 0.5)) - pixelTop;
}

void CGhostSurface::Clear() {
    oneColour = 0;
}

void CGhostSurface::SetPixel(int32_t x, int32_t y, uint32_t argb) {
    FillRect({x, y, 1, 1}, argb);
}

void CGhostSurface::FillRect(const GUI_RECT& rect, uint32_t argb) {
    const PIXEL_RECT target = Clipped(ToPixels(rect));
    if (oneColour && target == PIXEL_RECT{0, 0, pixelWidth, pixelHeight}) {
        oneColour = BlendPixel(*oneColour, argb);
        return;
    }
    if (!MayPaint(target)) {
        return;
    }
    for (int32_t y = target.top; y < target.bottom; ++y) {
        BlendRun(Row(y) + target.left, target.right - target.left, argb);
    }
}

void CGhostSurface::Line(int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t argb) {
    if (area.Empty()) {
        return;
    }
    x1 = std::clamp(x1, 0, area.width - 1);
    x2 = std::clamp(x2, 0, area.width - 1);
    y1 = std::clamp(y1, 0, area.height - 1);
    y2 = std::clamp(y2, 0, area.height - 1);
    if (x1 == x2 || y1 == y2) {
        FillRect({std::min(x1, x2), std::min(y1, y2), std::abs(x2 - x1) + 1, std::abs(y2 - y1) + 1},
                 argb);
    } else {
        LinePixels(x1, y1, x2, y2, argb);
    }
}

// Bresenham from the middle of one unit to that of the other, with a square pen of one unit.
void CGhostSurface::LinePixels(int32_t x1, int32_t y1, int32_t x2, int32_t y2, uint32_t argb) {
    if (!MakePixels()) {
        return;
    }
    const PIXEL_RECT from = ToPixels({x1, y1, 1, 1});
    const PIXEL_RECT to = ToPixels({x2, y2, 1, 1});
    const int32_t pen = std::max(1, static_cast<int32_t>(std::floor(density + 0.5)));
    int32_t x = from.left;
    int32_t y = from.top;
    const int32_t dx = std::abs(to.left - x);
    const int32_t dy = -std::abs(to.top - y);
    const int32_t stepX = x < to.left ? 1 : -1;
    const int32_t stepY = y < to.top ? 1 : -1;
    int32_t error = dx + dy;
    while (true) {
        const PIXEL_RECT dot = Clipped({x, y, x + pen, y + pen});
        for (int32_t row = dot.top; row < dot.bottom; ++row) {
            BlendRun(Row(row) + dot.left, std::max(0, dot.right - dot.left), argb);
        }
        if (x == to.left && y == to.top) {
            break;
        }
        const int32_t twice = 2 * error;
        if (twice >= dy) {
            error += dy;
            x += stepX;
        }
        if (twice <= dx) {
            error += dx;
            y += stepY;
        }
    }
}

void CGhostSurface::FillGradient(const GUI_RECT& rect, uint32_t from, uint32_t to,
                                 bool horizontal) {
    const PIXEL_RECT whole = ToPixels(rect);
    const PIXEL_RECT target = Clipped(whole);
    if (!MayPaint(target)) {
        return;
    }
    if (horizontal) {
        std::vector<uint32_t> colours;
        Ramp ramp(from, to, whole.right - whole.left);
        ramp.Skip(target.left - whole.left);
        for (int32_t x = target.left; x < target.right; ++x) {
            colours.push_back(ramp.Next());
        }
        for (int32_t y = target.top; y < target.bottom; ++y) {
            uint32_t* const row = Row(y) + target.left;
            BlendRow(row, colours.data(), static_cast<int32_t>(colours.size()));
        }
        return;
    }
    Ramp ramp(from, to, whole.bottom - whole.top);
    ramp.Skip(target.top - whole.top);
    for (int32_t y = target.top; y < target.bottom; ++y) {
        BlendRun(Row(y) + target.left, target.right - target.left, ramp.Next());
    }
}

void CGhostSurface::InvertRect(const GUI_RECT& rect) {
    const PIXEL_RECT target = Clipped(ToPixels(rect));
    if (!MayPaint(target)) {
        return;
    }
    for (int32_t y = target.top; y < target.bottom; ++y) {
        for (int32_t x = target.left; x < target.right; ++x) {
            Row(y)[x] ^= 0x00FFFFFF;
        }
    }
}

namespace {

// Which pixels of a bitmap belong to a pixel of the target, along one axis.
struct TAP {
    int32_t low = 0;
    int32_t high = 0;
    uint32_t share = 0; // of the high one, in 256ths
};

// A bitmap of a density that does not divide has a pixel more or less than its place on the screen, and a
// row left out would bend every line that crosses it; so pixels between two rows are mixed of both. Where
// the sizes are equal, as at whole densities, each pixel is copied as it is.
class SourceAxis {
public:
    // `from` and `extent` in units of the bitmap, spread over `pixels` of the target.
    SourceAxis(int32_t from, int32_t extent, int32_t bitmapUnits, int32_t bitmapPixels,
               int32_t pixels)
        : start(static_cast<double>(from) * bitmapPixels / bitmapUnits)
        , scale(static_cast<double>(extent) * bitmapPixels / bitmapUnits / pixels)
        , last(bitmapPixels - 1) {}

    [[nodiscard]] TAP At(int32_t pixel) const {
        constexpr double kWhole = 256.0;
        const double at =
            std::clamp(start + (pixel + 0.5) * scale - 0.5, 0.0, static_cast<double>(last));
        TAP tap;
        tap.low = static_cast<int32_t>(at);
        tap.share = static_cast<uint32_t>((at - tap.low) * kWhole);
        tap.high = std::min(tap.low + 1, last);
        return tap;
    }

private:
    double start;
    double scale;
    int32_t last;
};

// The mean of four pixels, by their shares and alphas.
uint32_t MixAny(const uint32_t (&corners)[4], uint32_t columnShare, uint32_t rowShare) {
    const uint64_t shares[] = {
        uint64_t{256 - columnShare} * (256 - rowShare), uint64_t{columnShare} * (256 - rowShare),
        uint64_t{256 - columnShare} * rowShare, uint64_t{columnShare} * rowShare};
    constexpr uint64_t kAll = 1 << 16;
    uint64_t alpha = 0;
    uint64_t colour[3] = {};
    for (size_t i = 0; i < 4; ++i) {
        const uint64_t weight = shares[i] * (corners[i] >> 24);
        alpha += weight;
        for (size_t c = 0; c < 3; ++c) {
            colour[c] += weight * (corners[i] >> (c * 8) & 0xFF);
        }
    }
    if (alpha == 0) {
        return 0;
    }
    auto mixed = static_cast<uint32_t>((alpha + kAll / 2) / kAll) << 24;
    for (size_t c = 0; c < 3; ++c) {
        mixed |= static_cast<uint32_t>((colour[c] + alpha / 2) / alpha) << (c * 8);
    }
    return mixed;
}

// The same of opaque pixels, where the alphas go out of the division: two channels at once.
uint32_t MixOpaque(const uint32_t (&corners)[4], uint32_t columnShare, uint32_t rowShare) {
    constexpr uint32_t kPair = 0x00FF00FF;
    constexpr uint64_t kHalves = 0x0000800000008000; // of what is cut off each channel
    const auto across = [&](uint32_t left, uint32_t right, uint32_t shift) {
        const uint32_t pair = (left >> shift & kPair) * (256 - columnShare) +
                              (right >> shift & kPair) * columnShare; // 16 bits each
        return uint64_t{pair & 0xFFFF} | uint64_t{pair >> 16} << 32;
    };
    const auto down = [&](uint32_t shift) {
        const uint64_t pair = across(corners[0], corners[1], shift) * (256 - rowShare) +
                              across(corners[2], corners[3], shift) * rowShare + kHalves;
        return static_cast<uint32_t>(pair >> 16 & 0xFF) | static_cast<uint32_t>(pair >> 48 & 0xFF)
                                                              << 16;
    };
    return down(0) | down(8) << 8;
}

uint32_t MixPixels(const uint32_t* low, const uint32_t* high, const TAP& column,
                   uint32_t rowShare) {
    const uint32_t corners[] = {low[column.low], low[column.high], high[column.low],
                                high[column.high]};
    if (corners[0] == corners[1] && corners[0] == corners[2] && corners[0] == corners[3]) {
        return corners[0];
    }
    const bool opaque = (corners[0] & corners[1] & corners[2] & corners[3]) >> 24 == 255;
    return opaque ? MixOpaque(corners, column.share, rowShare)
                  : MixAny(corners, column.share, rowShare);
}

// Whether each pixel is that beside the one before, unmixed.
bool AreNeighbours(const std::vector<TAP>& taps) {
    for (size_t i = 0; i < taps.size(); ++i) {
        if (taps[i].share != 0 || taps[i].low != taps[0].low + static_cast<int32_t>(i)) {
            return false;
        }
    }
    return true;
}

// Blends the pixels that the taps say; `rowAt(i)` is where the target's row begins.
template <typename RowAt>
void BlendTaps(const GUI_BITMAP& bitmap, const std::vector<TAP>& columns,
               const std::vector<TAP>& rows, RowAt rowAt) {
    const auto count = static_cast<int32_t>(columns.size());
    const bool copied = AreNeighbours(columns);
    std::vector<uint32_t> line(columns.size());
    for (size_t i = 0; i < rows.size(); ++i) {
        const auto rowOf = [&](int32_t row) {
            return bitmap.pixels.data() + static_cast<ptrdiff_t>(row) * bitmap.pixelWidth;
        };
        const uint32_t* const low = rowOf(rows[i].low);
        if (copied && rows[i].share == 0) {
            BlendRow(rowAt(i), low + columns[0].low, count);
            continue;
        }
        for (size_t x = 0; x < line.size(); ++x) {
            line[x] = MixPixels(low, rowOf(rows[i].high), columns[x], rows[i].share);
        }
        BlendRow(rowAt(i), line.data(), count);
    }
}

} // namespace

void CGhostSurface::Blit(const GUI_BITMAP& bitmap, const GUI_RECT& target, int32_t sourceX,
                         int32_t sourceY, Flip flip) {
    // Cut to the bitmap, the target along with the source.
    const GUI_RECT wanted{sourceX, sourceY, target.width, target.height};
    const GUI_RECT source = Intersection(wanted, {0, 0, bitmap.width, bitmap.height});
    if (source.Empty() || bitmap.pixels.empty()) {
        return;
    }
    const GUI_RECT placed{target.x + source.x - sourceX, target.y + source.y - sourceY,
                          source.width, source.height};
    const PIXEL_RECT whole = ToPixels(placed);
    const PIXEL_RECT visible = Clipped(whole);
    if (!MayPaint(visible)) {
        return;
    }
    const SourceAxis acrossAxis(source.x, source.width, bitmap.width, bitmap.pixelWidth,
                                whole.right - whole.left);
    const SourceAxis downAxis(source.y, source.height, bitmap.height, bitmap.pixelHeight,
                              whole.bottom - whole.top);
    std::vector<TAP> columns;
    columns.reserve(static_cast<size_t>(visible.right - visible.left));
    for (int32_t x = visible.left; x < visible.right; ++x) {
        columns.push_back(
            acrossAxis.At(flip == Flip::kLeftToRight ? whole.right - 1 - x : x - whole.left));
    }
    std::vector<TAP> rows;
    rows.reserve(static_cast<size_t>(visible.bottom - visible.top));
    for (int32_t y = visible.top; y < visible.bottom; ++y) {
        rows.push_back(
            downAxis.At(flip == Flip::kTopToBottom ? whole.bottom - 1 - y : y - whole.top));
    }
    BlendTaps(bitmap, columns, rows, [&](size_t row) {
        return Row(visible.top + static_cast<int32_t>(row)) + visible.left;
    });
}

namespace {

// The pixels of an axis of `extent` pixels over which a bitmap's `bitmapPixels` are spread, from `from` to `to`.
std::vector<TAP> StretchTaps(int32_t from, int32_t to, int32_t extent, int32_t bitmapPixels,
                             bool mixes) {
    const SourceAxis axis(0, bitmapPixels, bitmapPixels, bitmapPixels, extent);
    std::vector<TAP> taps;
    taps.reserve(static_cast<size_t>(std::max(to - from, 0)));
    for (int32_t at = from; at < to; ++at) {
        const auto nearest = static_cast<int32_t>(int64_t{at} * bitmapPixels / extent);
        taps.push_back(mixes ? axis.At(at) : TAP{nearest, nearest, 0});
    }
    return taps;
}

} // namespace

// Nearest neighbour, sampled at the pixel's corner. On denser screens, where a step would be seen, pixels
// between two of the bitmap's are mixed of both.
void CGhostSurface::BlitScaled(const GUI_BITMAP& bitmap, const GUI_RECT& target) {
    const PIXEL_RECT whole = ToPixels(target);
    const PIXEL_RECT visible = Clipped(whole);
    if (bitmap.pixels.empty() || !MayPaint(visible)) {
        return;
    }
    const bool mixes = density > 1.0;
    const std::vector<TAP> columns =
        StretchTaps(visible.left - whole.left, visible.right - whole.left, whole.right - whole.left,
                    bitmap.pixelWidth, mixes);
    const std::vector<TAP> rows = StretchTaps(visible.top - whole.top, visible.bottom - whole.top,
                                              whole.bottom - whole.top, bitmap.pixelHeight, mixes);
    BlendTaps(bitmap, columns, rows, [&](size_t row) {
        return Row(visible.top + static_cast<int32_t>(row)) + visible.left;
    });
}

void CGhostSurface::KeepMask(int32_t x, int32_t y, const uint8_t* coverage, int32_t width,
                             int32_t height) {
    const PIXEL_RECT visible = Clipped({x, y, x + width, y + height});
    if (!MayPaint(visible)) {
        return;
    }
    for (int32_t row = visible.top; row < visible.bottom; ++row) {
        const uint8_t* const from = coverage + static_cast<ptrdiff_t>(row - y) * width;
        uint32_t* const to = Row(row);
        for (int32_t column = visible.left; column < visible.right; ++column) {
            to[column] = WithCoverage(to[column], from[column - x]);
        }
    }
}

void CGhostSurface::StampMask(int32_t x, int32_t y, const uint8_t* coverage, int32_t width,
                              int32_t height, int32_t pitch, uint32_t argb) {
    const PIXEL_RECT visible = Clipped({x, y, x + width, y + height});
    if (!MayPaint(visible)) {
        return;
    }
    for (int32_t row = visible.top; row < visible.bottom; ++row) {
        const uint8_t* const from = coverage + static_cast<ptrdiff_t>(row - y) * pitch;
        uint32_t* const to = Row(row);
        for (int32_t column = visible.left; column < visible.right; ++column) {
            if (const uint32_t covered = from[column - x]; covered != 0) {
                to[column] = BlendPixel(to[column], WithCoverage(argb, covered));
            }
        }
    }
}
