#include "display/overlay_text.h"

#include "display/overlay_letters.h"

#include <GL/gl.h>

#include <algorithm>
#include <cstddef>
#include <vector>

namespace {

// The texture holds two sheets: the rims of all letters above, the letters below. Each is in a box with
// room for the rim. A rim excludes its letter's dots, so that translucent text does not mix with the
// rim's colour.
constexpr uint32_t kRim = 1; // dots
constexpr uint32_t kBoxWidth = kLetterColumns + 2 * kRim;
constexpr uint32_t kBoxHeight = kLetterRows + 2 * kRim;
constexpr uint32_t kBoxesPerRow = 16;
constexpr uint32_t kBoxRows = kLetterCount / kBoxesPerRow;
constexpr uint32_t kSheetWidth = kBoxesPerRow * kBoxWidth;
constexpr uint32_t kSheetHeight = kBoxRows * kBoxHeight; // of one of the two sheets
static_assert(kLetterCount % kBoxesPerRow == 0);
static_assert(kTextCellWidth == kLetterColumns + 1 && kTextCellHeight == kLetterRows + 1);

constexpr int kBarMargin = 2;         // dots around the text
constexpr uint32_t kBarOpacity = 140; // of 255, behind opaque text

enum class LetterSheet : uint32_t { kRims = 0, kLetters = 1 };

constexpr uint32_t kWhite = 0xFFFFFFFF;
constexpr uint32_t kClear = 0x00FFFFFF;

bool IsDot(uint32_t letter, int column, int row) {
    return column >= 0 && row >= 0 && column < static_cast<int>(kLetterColumns) &&
           row < static_cast<int>(kLetterRows) &&
           LetterDot(letter, static_cast<uint32_t>(column), static_cast<uint32_t>(row));
}

bool IsNearDot(uint32_t letter, int column, int row) {
    constexpr int kReach = kRim;
    for (int down = -kReach; down <= kReach; ++down) {
        for (int across = -kReach; across <= kReach; ++across) {
            if (IsDot(letter, column + across, row + down)) {
                return true;
            }
        }
    }
    return false;
}

std::vector<uint32_t> PaintSheets() {
    std::vector<uint32_t> pixels(size_t{kSheetWidth} * kSheetHeight * 2, kClear);
    for (uint32_t letter = 0; letter < kLetterCount; ++letter) {
        const uint32_t left = letter % kBoxesPerRow * kBoxWidth;
        const uint32_t top = letter / kBoxesPerRow * kBoxHeight;
        for (uint32_t y = 0; y < kBoxHeight; ++y) {
            for (uint32_t x = 0; x < kBoxWidth; ++x) {
                const int column = static_cast<int>(x) - static_cast<int>(kRim);
                const int row = static_cast<int>(y) - static_cast<int>(kRim);
                const size_t rim = size_t{top + y} * kSheetWidth + left + x;
                if (IsDot(letter, column, row)) {
                    pixels[rim + size_t{kSheetHeight} * kSheetWidth] = kWhite;
                } else if (IsNearDot(letter, column, row)) {
                    pixels[rim] = kWhite;
                }
            }
        }
    }
    return pixels;
}

bool IsContinuation(char c) {
    return (static_cast<uint8_t>(c) & 0xC0) == 0x80;
}

uint32_t LetterOf(char c) {
    const uint32_t letter = static_cast<uint8_t>(c) - static_cast<uint32_t>(kFirstLetter);
    return letter < kMissingLetter ? letter : kMissingLetter;
}

// Calls `letter(number, column, line)` for every letter of the text.
template <typename F>
void ForEachLetter(std::string_view text, F letter) {
    int column = 0;
    int line = 0;
    for (const char c : text) {
        if (c == '\n') {
            column = 0;
            ++line;
        } else if (!IsContinuation(c)) {
            letter(LetterOf(c), column, line);
            ++column;
        }
    }
}

void DrawBar(int left, int top, int right, int bottom) {
    glVertex2i(left, top);
    glVertex2i(right, top);
    glVertex2i(right, bottom);
    glVertex2i(left, bottom);
}

// A bar for each line with letters. They touch but don't overlap, so that all are equally dark.
void DrawBars(std::string_view text, int x, int y, int scale) {
    const int lastLine = static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    glBegin(GL_QUADS);
    for (int line = 0; line <= lastLine; ++line) {
        const size_t length = std::min(text.find('\n'), text.size());
        const TEXT_SIZE size = MeasureOverlayText(text.substr(0, length), 1);
        const int top = line * kTextCellHeight - (line == 0 ? kBarMargin : 1);
        const int bottom = (line + 1) * kTextCellHeight - (line == lastLine ? 1 - kBarMargin : 1);
        if (size.width > 0) {
            DrawBar(x - kBarMargin * scale, y + top * scale, x + (size.width + kBarMargin) * scale,
                    y + bottom * scale);
        }
        text.remove_prefix(std::min(length + 1, text.size()));
    }
    glEnd();
}

void DrawSheet(const TEXTURE_RECORD& texture, LetterSheet sheet, std::string_view text, int x,
               int y, int scale) {
    const auto texWidth = static_cast<float>(texture.texWidth);
    const auto texHeight = static_cast<float>(texture.texHeight);
    const int width = static_cast<int>(kBoxWidth) * scale;
    const int height = static_cast<int>(kBoxHeight) * scale;
    const int rim = static_cast<int>(kRim) * scale;
    glBegin(GL_QUADS);
    ForEachLetter(text, [&](uint32_t letter, int column, int line) {
        const uint32_t boxLeft = letter % kBoxesPerRow * kBoxWidth;
        const uint32_t boxTop =
            letter / kBoxesPerRow * kBoxHeight + static_cast<uint32_t>(sheet) * kSheetHeight;
        const float u0 = static_cast<float>(boxLeft) / texWidth;
        const float u1 = static_cast<float>(boxLeft + kBoxWidth) / texWidth;
        const float v0 = static_cast<float>(boxTop) / texHeight;
        const float v1 = static_cast<float>(boxTop + kBoxHeight) / texHeight;
        const int left = x + column * kTextCellWidth * scale - rim;
        const int top = y + line * kTextCellHeight * scale - rim;
        glTexCoord2f(u0, v0);
        glVertex2i(left, top);
        glTexCoord2f(u1, v0);
        glVertex2i(left + width, top);
        glTexCoord2f(u1, v1);
        glVertex2i(left + width, top + height);
        glTexCoord2f(u0, v1);
        glVertex2i(left, top + height);
    });
    glEnd();
}

} // namespace

TEXT_SIZE MeasureOverlayText(std::string_view text, int scale) {
    int columns = 0;
    int lines = 0;
    ForEachLetter(text, [&](uint32_t, int column, int line) {
        columns = std::max(columns, column + 1);
        lines = std::max(lines, line + 1);
    });
    if (columns == 0) {
        return {0, 0};
    }
    const int dot = std::max(scale, 1);
    return {(columns * kTextCellWidth - 1) * dot, (lines * kTextCellHeight - 1) * dot};
}

OverlayText::~OverlayText() {
    DestroyTexture(letters);
}

bool OverlayText::Init() {
    letters.width = kSheetWidth;
    letters.height = kSheetHeight * 2;
    return CreateTexture(letters, false) &&
           UploadTexture(letters, PaintSheets().data(), letters.width, letters.height,
                         letters.width);
}

void OverlayText::Draw(std::string_view text, int x, int y, int scale, uint32_t argb) const {
    if (letters.glTexture == 0) {
        return;
    }
    const auto alpha = static_cast<uint8_t>(argb >> 24);
    const int dot = std::max(scale, 1);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_TEXTURE_2D);
    glColor4ub(0, 0, 0, static_cast<uint8_t>(alpha * kBarOpacity / 255));
    DrawBars(text, x, y, dot);
    glEnable(GL_TEXTURE_2D);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glBindTexture(GL_TEXTURE_2D, letters.glTexture);
    SetTextureFilter(TextureFilter::kNearest);
    glColor4ub(0, 0, 0, alpha);
    DrawSheet(letters, LetterSheet::kRims, text, x, y, dot);
    glColor4ub(static_cast<uint8_t>(argb >> 16), static_cast<uint8_t>(argb >> 8),
               static_cast<uint8_t>(argb), alpha);
    DrawSheet(letters, LetterSheet::kLetters, text, x, y, dot);
    glColor4ub(255, 255, 255, 255);
    glDisable(GL_BLEND);
    glDisable(GL_TEXTURE_2D);
}
