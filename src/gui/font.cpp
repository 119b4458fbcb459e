#include "gui/font.h"

#include "base/ranked_mutex.h"

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_ADVANCES_H
#include FT_CACHE_H
#include FT_GLYPH_H

#include <algorithm>
#include <cmath>
#include <deque>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace {

constexpr int32_t kDefaultSize = 14;
constexpr FT_UInt kMostFaces = 16;
constexpr FT_UInt kMostSizes = 64;
constexpr FT_ULong kMostCacheBytes = 16 << 20;
constexpr FT_Int32 kLoadFlags = FT_LOAD_RENDER | FT_LOAD_TARGET_LIGHT;

struct REGISTERED {
    std::string name;
    std::span<const uint8_t> data;
    int32_t size;
    uint32_t flags;
};

FT_Error LoadFace(FTC_FaceID id, FT_Library library, FT_Pointer /*data*/, FT_Face* face) {
    const auto* const font = static_cast<const REGISTERED*>(id);
    return FT_New_Memory_Face(library, font->data.data(), static_cast<FT_Long>(font->data.size()),
                              0, face);
}

// Windows and Unicode, or else whatever map comes first.
FT_Int ChooseCharmap(FT_Face face) {
    constexpr FT_UShort kWindows = 3;
    constexpr FT_UShort kUnicode = 1;
    for (FT_Int i = 0; i < face->num_charmaps; ++i) {
        if (face->charmaps[i]->platform_id == kWindows &&
            face->charmaps[i]->encoding_id == kUnicode) {
            return i;
        }
    }
    return 0;
}

int32_t CeilUnits(FT_Pos value) {
    return static_cast<int32_t>((value + 63) >> 6);
}

int32_t FloorUnits(FT_Pos value) {
    return static_cast<int32_t>(value >> 6);
}

} // namespace

struct CGhostFontManager::FREETYPE {
    FT_Library library = nullptr;
    FTC_Manager manager = nullptr;
    FTC_CMapCache charmaps = nullptr;
    FTC_SBitCache bitmaps = nullptr;
    FTC_ImageCache images = nullptr; // of glyphs beyond 127 pixels, too large for the other
    RankedMutex<LockRank::kLeaf> lock;
    std::deque<REGISTERED> registered; // addresses are the cache's names of faces
    std::deque<CGhostFont> fonts;

    FREETYPE() {
        if (FT_Init_FreeType(&library) != 0) {
            library = nullptr;
            return;
        }
        if (FTC_Manager_New(library, kMostFaces, kMostSizes, kMostCacheBytes, LoadFace, nullptr,
                            &manager) == 0) {
            FTC_CMapCache_New(manager, &charmaps);
            FTC_SBitCache_New(manager, &bitmaps);
            FTC_ImageCache_New(manager, &images);
        }
    }
    ~FREETYPE() {
        if (manager != nullptr) {
            FTC_Manager_Done(manager);
        }
        if (library != nullptr) {
            FT_Done_FreeType(library);
        }
    }
    FREETYPE(const FREETYPE&) = delete;
    FREETYPE& operator=(const FREETYPE&) = delete;

    [[nodiscard]] static FTC_ScalerRec Scaler(REGISTERED* face, int32_t size, double density) {
        constexpr FT_UInt kPointsAsPixels = 72;
        FTC_ScalerRec scaler{};
        scaler.face_id = face;
        scaler.width = scaler.height =
            static_cast<FT_UInt>(std::max(64.0, std::floor(size * density * 64.0 + 0.5)));
        scaler.pixel = 0;
        scaler.x_res = scaler.y_res = kPointsAsPixels;
        return scaler;
    }

    [[nodiscard]] FT_Size SizeOf(REGISTERED* face, int32_t size) const {
        FTC_ScalerRec scaler = Scaler(face, size, 1.0);
        FT_Size found = nullptr;
        return manager != nullptr && FTC_Manager_LookupSize(manager, &scaler, &found) == 0
                   ? found
                   : nullptr;
    }
};

struct CGhostFont::CACHE {
    REGISTERED* face = nullptr;
    FT_Int charmap = 0;
    std::unordered_map<wchar_t, int32_t> advances;
};

namespace {

// The cache of small bitmaps has bytes for places and sizes, and nothing for a glyph beyond them.
GUI_GLYPH LargeGlyph(FTC_ImageCache images, FTC_ScalerRec& scaler, FT_UInt glyph) {
    GUI_GLYPH drawn;
    FT_Glyph image = nullptr;
    if (FTC_ImageCache_LookupScaler(images, &scaler, kLoadFlags, glyph, &image, nullptr) != 0 ||
        image->format != FT_GLYPH_FORMAT_BITMAP) {
        return drawn;
    }
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): how the library derives its records
    const auto* const bitmap = reinterpret_cast<FT_BitmapGlyph>(image);
    drawn.coverage = bitmap->bitmap.buffer;
    drawn.width = static_cast<int32_t>(bitmap->bitmap.width);
    drawn.height = static_cast<int32_t>(bitmap->bitmap.rows);
    drawn.pitch = bitmap->bitmap.pitch;
    drawn.left = bitmap->left;
    drawn.top = bitmap->top;
    return drawn;
}

} // namespace

int32_t CGhostFont::Advance(wchar_t character) {
    const std::scoped_lock hold(manager->freetype->lock);
    const auto found = cache->advances.find(character);
    if (found != cache->advances.end()) {
        return found->second;
    }
    int32_t advance = 0;
    const auto& freetype = *manager->freetype;
    const FT_UInt glyph = FTC_CMapCache_Lookup(freetype.charmaps, cache->face, cache->charmap,
                                               static_cast<FT_UInt32>(character));
    FT_SizeRec_* const at = freetype.SizeOf(cache->face, size);
    FT_Fixed wide = 0;
    if (glyph != 0 && at != nullptr &&
        FT_Get_Advance(at->face, glyph, FT_LOAD_NO_HINTING, &wide) == 0) {
        advance = static_cast<int32_t>((wide + 512) >> 10); // 65,536ths to 64ths
    }
    cache->advances.emplace(character, advance);
    return advance;
}

GUI_GLYPH CGhostFont::Glyph(wchar_t character, double density) {
    GUI_GLYPH drawn;
    auto& freetype = *manager->freetype;
    const std::scoped_lock hold(freetype.lock);
    const FT_UInt glyph = FTC_CMapCache_Lookup(freetype.charmaps, cache->face, cache->charmap,
                                               static_cast<FT_UInt32>(character));
    FTC_ScalerRec scaler = CGhostFontManager::FREETYPE::Scaler(cache->face, size, density);
    FTC_SBit bitmap = nullptr;
    if (glyph == 0 || FTC_SBitCache_LookupScaler(freetype.bitmaps, &scaler, kLoadFlags, glyph,
                                                 &bitmap, nullptr) != 0) {
        return drawn;
    }
    if (bitmap->buffer == nullptr) {
        return LargeGlyph(freetype.images, scaler, glyph);
    }
    drawn.coverage = bitmap->buffer;
    drawn.width = bitmap->width;
    drawn.height = bitmap->height;
    drawn.pitch = bitmap->pitch;
    drawn.left = bitmap->left; // NOLINT(bugprone-signed-char-misuse): a small number
    drawn.top = bitmap->top;   // NOLINT(bugprone-signed-char-misuse)
    return drawn;
}

CGhostFontManager& CGhostFontManager::Get() {
    static CGhostFontManager manager;
    return manager;
}

CGhostFontManager::CGhostFontManager()
    : freetype(std::make_unique<FREETYPE>()) {}

CGhostFontManager::~CGhostFontManager() = default;

int32_t CGhostFontManager::AddFont(std::string_view name, std::span<const uint8_t> data,
                                   int32_t size, uint32_t flags) {
    const std::scoped_lock hold(freetype->lock); // the library makes one face at a time
    FT_Face probe = nullptr;
    if (freetype->manager == nullptr ||
        FT_New_Memory_Face(freetype->library, data.data(), static_cast<FT_Long>(data.size()), 0,
                           &probe) != 0) {
        return -1;
    }
    const bool scalable = FT_IS_SCALABLE(probe);
    FT_Done_Face(probe);
    if (!scalable) {
        return -1;
    }
    freetype->registered.push_back({std::string(name), data, size, flags});
    return static_cast<int32_t>(freetype->registered.size()) - 1;
}

CGhostFont* CGhostFontManager::GetFont(std::string_view name, int32_t height) {
    const std::scoped_lock hold(freetype->lock);
    for (CGhostFont& font : freetype->fonts) {
        if (font.name == name && font.size == height) {
            return &font;
        }
    }
    const auto face = std::find_if(freetype->registered.begin(), freetype->registered.end(),
                                   [&](const REGISTERED& row) { return row.name == name; });
    if (face == freetype->registered.end()) {
        return nullptr;
    }
    for (int32_t size = std::clamp(height, 1, 512); size > 0; --size) {
        FT_SizeRec_* const at = freetype->SizeOf(&*face, size);
        if (at == nullptr) {
            return nullptr;
        }
        const FT_Size_Metrics& metrics = at->metrics;
        const int32_t ascender = CeilUnits(metrics.ascender);
        const int32_t descender = FloorUnits(metrics.descender);
        if (ascender - descender > height && size > 1) {
            continue;
        }
        CGhostFont& font = freetype->fonts.emplace_back();
        font.name = name;
        font.size = size;
        font.lineHeight = CeilUnits(metrics.height);
        font.ascender = ascender;
        font.descender = descender;
        font.maxAdvance = CeilUnits(metrics.max_advance);
        font.manager = this;
        font.cache = std::make_shared<CGhostFont::CACHE>();
        font.cache->face = &*face;
        font.cache->charmap = ChooseCharmap(at->face);
        return &font;
    }
    return nullptr;
}

CGhostFont* CGhostFontManager::DefaultFont() {
    CGhostFont* font = defaultFont;
    if (font == nullptr) {
        defaultFont = font = GetFont("Default", kDefaultSize);
    }
    return font;
}
