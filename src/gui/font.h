// Fonts: registered faces and the fonts of a size made from them, on FreeType's cache.
//
// Units: a font has a height in units of the virtual screen. Its measures are those of density 1, in
//   units, so that a layout is the same at every density; glyphs are drawn at the scaled size.
// Advances are those of the outline, in 64ths of a unit, not rounded for each letter.
// Owner: CGhostFontManager has the faces, fonts and caches until the program ends; a font's address
//   stays valid.
// Thread: any for AddFont, GetFont and measuring. Glyphs are drawn in the toolkit's round alone, during which
//   no other thread measures.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

// One glyph as it is drawn. The mask belongs to the cache and is valid until the next glyph is asked
// for.
struct GUI_GLYPH {
    const uint8_t* coverage = nullptr; // null: nothing is drawn
    int32_t width = 0;                 // pixels
    int32_t height = 0;
    int32_t pitch = 0;
    int32_t left = 0; // of the mask from the pen, in pixels
    int32_t top = 0;  // of the mask above the base line
};

class CGhostFontManager;

class CGhostFont {
public:
    [[nodiscard]] const std::string& Name() const { return name; }
    [[nodiscard]] int32_t Size() const { return size; }             // chosen, units
    [[nodiscard]] int32_t LineHeight() const { return lineHeight; } // units
    [[nodiscard]] int32_t Ascender() const { return ascender; }
    [[nodiscard]] int32_t Descender() const { return descender; } // below 0
    [[nodiscard]] int32_t MaxAdvance() const { return maxAdvance; }

    // 64ths of a unit; 0 for a character without a glyph.
    [[nodiscard]] int32_t Advance(wchar_t character);
    [[nodiscard]] GUI_GLYPH Glyph(wchar_t character, double density);

private:
    friend class CGhostFontManager;
    struct CACHE;
    std::string name;
    int32_t size = 0;
    int32_t lineHeight = 0;
    int32_t ascender = 0;
    int32_t descender = 0;
    int32_t maxAdvance = 0;
    CGhostFontManager* manager = nullptr;
    std::shared_ptr<CACHE> cache;
};

class CGhostFontManager {
public:
    static CGhostFontManager& Get(); // the process's own
    CGhostFontManager();
    ~CGhostFontManager();
    CGhostFontManager(const CGhostFontManager&) = delete;
    CGhostFontManager& operator=(const CGhostFontManager&) = delete;

    // Registers a face; `data` must stay. The face's sequence number, or -1 for data that is no font.
    int32_t AddFont(std::string_view name, std::span<const uint8_t> data, int32_t size,
                    uint32_t flags);

    // The font whose ascender and descender together are at most that high. Null for an unknown name.
    [[nodiscard]] CGhostFont* GetFont(std::string_view name, int32_t height);

    // `Default` at size 14 once it is registered; null before.
    [[nodiscard]] CGhostFont* DefaultFont();
    [[nodiscard]] CGhostFont* OrDefault(CGhostFont* font) {
        return font != nullptr ? font : DefaultFont();
    }

private:
    friend class CGhostFont;
    struct FREETYPE;
    std::unique_ptr<FREETYPE> freetype;
    std::atomic<CGhostFont*> defaultFont = nullptr;
};
