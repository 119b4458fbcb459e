// The theme's images: from the embedded PNG to a bitmap of the display's density.
#include "gui/bitmap.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <deque>
#include <string>

namespace {

struct LOADED {
    std::string name;
    std::span<const uint8_t> png;
    GUI_BITMAP bitmap; // without pixels for an image that is damaged

    [[nodiscard]] bool Is(const GUI_IMAGE_ROW& row) const {
        return name == row.name && png.data() == row.png.data() && png.size() == row.png.size();
    }
};

struct IMAGES {
    std::span<const GUI_IMAGE_ROW> rows;
    std::deque<LOADED> loaded; // addresses stay
    double density = 1.0;
};

IMAGES& Images() {
    static IMAGES images;
    return images;
}

void Decode(LOADED& loaded, double density) {
    std::vector<uint32_t> pixels;
    uint32_t width = 0;
    uint32_t height = 0;
    if (!LoadEmbeddedImage(loaded.png, pixels, width, height)) {
        return;
    }
    GUI_BITMAP& bitmap = loaded.bitmap;
    const auto units = [](uint32_t size) {
        return std::max(1, static_cast<int32_t>(size) / kImagePixelsPerUnit);
    };
    const auto scaled = [density](int32_t size) {
        return std::max(1, static_cast<int32_t>(std::lround(size * density)));
    };
    bitmap.width = units(width);
    bitmap.height = units(height);
    bitmap.density = density;
    bitmap.pixelWidth = scaled(bitmap.width);
    bitmap.pixelHeight = scaled(bitmap.height);
    bitmap.pixels = ReducePixels(pixels, static_cast<int32_t>(width), static_cast<int32_t>(height),
                                 bitmap.pixelWidth, bitmap.pixelHeight);
}

} // namespace

void SetThemeImages(std::span<const GUI_IMAGE_ROW> rows) {
    Images().rows = rows;
}

const GUI_BITMAP* LoadThemeBitmap(std::string_view name) {
    IMAGES& images = Images();
    const auto row = std::find_if(images.rows.begin(), images.rows.end(),
                                  [&](const GUI_IMAGE_ROW& at) { return at.name == name; });
    if (row == images.rows.end()) {
        return nullptr;
    }
    auto found = std::find_if(images.loaded.begin(), images.loaded.end(),
                              [&](const LOADED& at) { return at.Is(*row); });
    if (found == images.loaded.end()) {
        found = images.loaded.insert(found, {std::string(row->name), row->png, {}});
        Decode(*found, images.density);
    }
    return found->bitmap.pixels.empty() ? nullptr : &found->bitmap;
}

void RefitThemeBitmaps(double density) {
    IMAGES& images = Images();
    if (density == images.density) {
        return;
    }
    images.density = density;
    for (LOADED& loaded : images.loaded) {
        Decode(loaded, density);
    }
}

namespace {

// The pixels of a row or column that a new one covers, with the share of each.
struct COVER {
    int32_t first;
    std::vector<double> shares;
};

std::vector<COVER> CoversOf(int32_t from, int32_t to) {
    std::vector<COVER> covers;
    const double step = static_cast<double>(from) / to;
    for (int32_t i = 0; i < to; ++i) {
        const double start = i * step;
        const double end = std::min<double>(from, (i + 1) * step);
        COVER cover{static_cast<int32_t>(start), {}};
        for (int32_t at = cover.first; at < from && at < end; ++at) {
            cover.shares.push_back(std::min<double>(end, at + 1) - std::max<double>(start, at));
        }
        covers.push_back(std::move(cover));
    }
    return covers;
}

struct IMAGE_VIEW {
    std::span<const uint32_t> pixels;
    size_t width;
};

// The mean of the pixels that a new one covers.
uint32_t MeanOf(const IMAGE_VIEW& image, const COVER& row, const COVER& column) {
    double area = 0;
    double alpha = 0;
    double colour[3] = {};
    for (size_t y = 0; y < row.shares.size(); ++y) {
        const size_t line = static_cast<size_t>(row.first) + y;
        for (size_t x = 0; x < column.shares.size(); ++x) {
            const uint32_t pixel =
                image.pixels[line * image.width + static_cast<size_t>(column.first) + x];
            const double share = row.shares[y] * column.shares[x];
            const double weight = share * (pixel >> 24);
            area += share;
            alpha += weight;
            for (size_t i = 0; i < 3; ++i) {
                colour[i] += weight * (pixel >> (i * 8) & 0xFF);
            }
        }
    }
    if (alpha <= 0) {
        return 0;
    }
    uint32_t mean = static_cast<uint32_t>(std::lround(alpha / area)) << 24;
    for (size_t i = 0; i < 3; ++i) {
        mean |= static_cast<uint32_t>(std::lround(colour[i] / alpha)) << (i * 8);
    }
    return mean;
}

} // namespace

std::vector<uint32_t> ReducePixels(std::span<const uint32_t> pixels, int32_t width, int32_t height,
                                   int32_t newWidth, int32_t newHeight) {
    const IMAGE_VIEW image{pixels, static_cast<size_t>(width)};
    const std::vector<COVER> columns = CoversOf(width, newWidth);
    const std::vector<COVER> rows = CoversOf(height, newHeight);
    std::vector<uint32_t> reduced;
    reduced.reserve(static_cast<size_t>(newWidth) * static_cast<size_t>(newHeight));
    for (const COVER& row : rows) {
        for (const COVER& column : columns) {
            reduced.push_back(MeanOf(image, row, column));
        }
    }
    return reduced;
}
