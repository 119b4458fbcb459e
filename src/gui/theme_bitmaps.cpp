// The theme's images: from the embedded PNG to a bitmap of the display's density.
#include "gui/bitmap.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <deque>
#include <string>

namespace {

// A decoded image. It is kept: every new density reduces it again.
struct SOURCE {
    std::string name;
    std::span<const uint8_t> png;
    int32_t pixelsPerUnit = 1;
    std::vector<uint32_t> pixels; // none of an image that is damaged
    int32_t width = 0;            // in pixels
    int32_t height = 0;

    [[nodiscard]] bool Is(const GUI_IMAGE_ROW& row) const {
        return name == row.name && png.data() == row.png.data() && png.size() == row.png.size();
    }
};

// A source in one of the sizes that it is used in.
struct LOADED {
    const SOURCE* source;
    GUI_BITMAP bitmap;
};

struct IMAGES {
    std::span<const GUI_IMAGE_ROW> rows;
    std::deque<SOURCE> sources; // addresses stay
    std::deque<LOADED> loaded;
    double density = 1.0;
};

IMAGES& Images() {
    static IMAGES images;
    return images;
}

// Null for a name that is not in the table.
const SOURCE* SourceOf(IMAGES& images, std::string_view name) {
    const auto row = std::find_if(images.rows.begin(), images.rows.end(),
                                  [&](const GUI_IMAGE_ROW& at) { return at.name == name; });
    if (row == images.rows.end()) {
        return nullptr;
    }
    const auto known = std::find_if(images.sources.begin(), images.sources.end(),
                                    [&](const SOURCE& at) { return at.Is(*row); });
    if (known != images.sources.end()) {
        return &*known;
    }
    SOURCE& source = images.sources.emplace_back();
    source.name = row->name;
    source.png = row->png;
    source.pixelsPerUnit = std::max(1, row->pixelsPerUnit);
    uint32_t width = 0;
    uint32_t height = 0;
    if (LoadEmbeddedImage(row->png, source.pixels, width, height)) {
        source.width = static_cast<int32_t>(width);
        source.height = static_cast<int32_t>(height);
    }
    return &source;
}

void Reduce(LOADED& loaded, double density) {
    const SOURCE& source = *loaded.source;
    GUI_BITMAP& bitmap = loaded.bitmap;
    const auto scaled = [density](int32_t size) {
        return std::max(1, static_cast<int32_t>(std::lround(size * density)));
    };
    bitmap.density = density;
    bitmap.pixelWidth = scaled(bitmap.width);
    bitmap.pixelHeight = scaled(bitmap.height);
    bitmap.pixels = ReducePixels(source.pixels, source.width, source.height, bitmap.pixelWidth,
                                 bitmap.pixelHeight);
}

const GUI_BITMAP* BitmapOf(IMAGES& images, const SOURCE& source, int32_t width, int32_t height) {
    const auto known = std::find_if(images.loaded.begin(), images.loaded.end(), [&](LOADED& at) {
        return at.source == &source && at.bitmap.width == width && at.bitmap.height == height;
    });
    if (known != images.loaded.end()) {
        return &known->bitmap;
    }
    LOADED& loaded = images.loaded.emplace_back();
    loaded.source = &source;
    loaded.bitmap.width = width;
    loaded.bitmap.height = height;
    Reduce(loaded, images.density);
    return &loaded.bitmap;
}

} // namespace

void SetThemeImages(std::span<const GUI_IMAGE_ROW> rows) {
    Images().rows = rows;
}

const GUI_BITMAP* LoadThemeBitmap(std::string_view name) {
    const SOURCE* const source = SourceOf(Images(), name);
    if (source == nullptr || source->pixels.empty()) {
        return nullptr;
    }
    return BitmapOf(Images(), *source, std::max(1, source->width / source->pixelsPerUnit),
                    std::max(1, source->height / source->pixelsPerUnit));
}

const GUI_BITMAP* LoadThemeBitmap(std::string_view name, int32_t width, int32_t height) {
    constexpr int32_t kMostSize = 4000; // of a window
    const SOURCE* const source = SourceOf(Images(), name);
    if (source == nullptr || source->pixels.empty()) {
        return nullptr;
    }
    return BitmapOf(Images(), *source, std::clamp(width, 1, kMostSize),
                    std::clamp(height, 1, kMostSize));
}

void RefitThemeBitmaps(double density) {
    IMAGES& images = Images();
    if (density == images.density) {
        return;
    }
    images.density = density;
    for (LOADED& loaded : images.loaded) {
        Reduce(loaded, density);
    }
}

namespace {

// The pixels of a row or column that a new one covers, with the share that each has of it.
struct COVER {
    int32_t first;
    std::vector<float> shares;
};

std::vector<COVER> CoversOf(int32_t from, int32_t to) {
    std::vector<COVER> covers;
    const double step = static_cast<double>(from) / to;
    for (int32_t i = 0; i < to; ++i) {
        const double start = i * step;
        const double end = std::min<double>(from, (i + 1) * step);
        COVER cover{static_cast<int32_t>(start), {}};
        for (int32_t at = cover.first; at < from && at < end; ++at) {
            const double share = std::min<double>(end, at + 1) - std::max<double>(start, at);
            cover.shares.push_back(static_cast<float>(share / (end - start)));
        }
        covers.push_back(std::move(cover));
    }
    return covers;
}

// Blue, green and red, each times alpha, and alpha.
using WEIGHTED = std::array<float, 4>;

WEIGHTED Weighted(uint32_t pixel) {
    const auto alpha = static_cast<float>(pixel >> 24);
    return {alpha * static_cast<float>(pixel & 0xFF), alpha * static_cast<float>(pixel >> 8 & 0xFF),
            alpha * static_cast<float>(pixel >> 16 & 0xFF), alpha};
}

void Add(WEIGHTED& sum, const WEIGHTED& more, float share) {
    for (size_t i = 0; i < sum.size(); ++i) {
        sum[i] += more[i] * share;
    }
}

uint32_t PixelOf(const WEIGHTED& mean) {
    const float alpha = mean[3];
    if (alpha <= 0) {
        return 0;
    }
    uint32_t pixel = static_cast<uint32_t>(std::lround(alpha)) << 24;
    for (uint32_t i = 0; i < 3; ++i) {
        pixel |= static_cast<uint32_t>(std::lround(mean[i] / alpha)) << (i * 8);
    }
    return pixel;
}

// One row, reduced in width alone.
void ReduceRow(const uint32_t* row, const std::vector<COVER>& columns,
               std::vector<WEIGHTED>& reduced) {
    for (size_t i = 0; i < columns.size(); ++i) {
        WEIGHTED sum{};
        const uint32_t* from = row + columns[i].first;
        for (const float share : columns[i].shares) {
            Add(sum, Weighted(*from++), share);
        }
        reduced[i] = sum;
    }
}

} // namespace

// First across, then down: the row that two new ones share is reduced once.
std::vector<uint32_t> ReducePixels(std::span<const uint32_t> pixels, int32_t width, int32_t height,
                                   int32_t newWidth, int32_t newHeight) {
    const std::vector<COVER> columns = CoversOf(width, newWidth);
    std::vector<uint32_t> reduced;
    reduced.reserve(static_cast<size_t>(newWidth) * static_cast<size_t>(newHeight));
    std::vector<WEIGHTED> line(columns.size());
    int32_t lineIsOf = -1;
    std::vector<WEIGHTED> mean(columns.size());
    for (const COVER& rows : CoversOf(height, newHeight)) {
        std::fill(mean.begin(), mean.end(), WEIGHTED{});
        int32_t row = rows.first;
        for (const float share : rows.shares) {
            if (lineIsOf != row) {
                lineIsOf = row;
                ReduceRow(pixels.data() + static_cast<ptrdiff_t>(row) * width, columns, line);
            }
            for (size_t i = 0; i < mean.size(); ++i) {
                Add(mean[i], line[i], share);
            }
            ++row;
        }
        for (const WEIGHTED& at : mean) {
            reduced.push_back(PixelOf(at));
        }
    }
    return reduced;
}
