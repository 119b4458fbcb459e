#include "front/gui_cursors.h"

#include "gui/bitmap.h"
#include "gui/manager.h"

#include <SDL_mouse.h>
#include <SDL_surface.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr std::array<const char*, 3> kImages = {"#CURSOR", "#CURSORHOT", "#CURSORWE"};
constexpr int32_t kHotSpot = 32; // units from the image's corner

// Null without an image, or where the display takes none.
SDL_Cursor* MakeCursor(const char* image, double density) {
    const GUI_BITMAP* const bitmap = LoadThemeBitmap(image);
    if (bitmap == nullptr) {
        return nullptr;
    }
    std::vector<uint32_t> pixels = bitmap->pixels; // SDL asks for pixels that it could write
    SDL_Surface* const surface = SDL_CreateRGBSurfaceWithFormatFrom(
        pixels.data(), bitmap->pixelWidth, bitmap->pixelHeight, 32,
        bitmap->pixelWidth * static_cast<int>(sizeof(uint32_t)), SDL_PIXELFORMAT_ARGB8888);
    if (surface == nullptr) {
        return nullptr;
    }
    const auto hotSpot = static_cast<int>(std::lround(kHotSpot * density));
    SDL_Cursor* const cursor = SDL_CreateColorCursor(surface, hotSpot, hotSpot);
    SDL_FreeSurface(surface);
    return cursor;
}

} // namespace

void GuiCursors::Update() {
    const CGhostManager& manager = CGhostManager::Get();
    if (density != manager.Density() && LoadThemeBitmap(kImages[0]) != nullptr) {
        End();
        density = manager.Density();
        for (size_t i = 0; i < kCount; ++i) {
            cursors[i] = MakeCursor(kImages[i], density);
        }
    }
    // A window may end while it is under the mouse, and leave the index as it was.
    const size_t index = manager.HoverWindow() != nullptr ? manager.CursorIndex() : 0;
    SDL_Cursor* const wanted = cursors[std::min(index, kCount - 1)];
    if (wanted != nullptr && wanted != shown) {
        SDL_SetCursor(wanted);
        shown = wanted;
    }
}

void GuiCursors::End() {
    if (shown != nullptr) {
        SDL_SetCursor(SDL_GetDefaultCursor());
        shown = nullptr;
    }
    for (SDL_Cursor*& cursor : cursors) {
        SDL_FreeCursor(cursor);
        cursor = nullptr;
    }
    density = 0.0;
}
