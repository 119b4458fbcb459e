#include "front/light_gun.h"

#include "display/full_screen.h"
#include "display/session_picture.h"
#include "front/event_pump.h"
#include "front/opened_game.h"
#include "machine/emu_system.h"
#include "machines/machine_options.h"
#include "settings/pad_defaults.h"

#include <atomic>
#include <optional>

namespace {

// Each player's aim: y << 32 | x in one word, so that a session's thread reads both at once; 0 for
// nobody.
std::atomic<uint64_t> gPointers[2]{};

struct PICTURE_POINT {
    uint32_t x; // pixels of the whole picture, from its top left
    uint32_t y;
};

// The pixel under the mouse; none outside the visible window or without a picture.
std::optional<PICTURE_POINT> PointInPicture(const SHOWN_PICTURE& shown, const MOUSE_STATE& mouse) {
    const EMU_VIDEO_FRAME& texels = shown.picture.picture;
    const SCREEN_QUAD quad =
        PlaceFullScreen(shown.picture, shown.view, shown.screenWidth, shown.screenHeight);
    const int64_t right = int64_t{mouse.x} - quad.left;
    const int64_t down = int64_t{mouse.y} - quad.top;
    if (right < 0 || down < 0 || right >= quad.width || down >= quad.height) {
        return std::nullopt;
    }
    const int64_t visibleX = texels.visibleX;
    const int64_t visibleY = texels.visibleY;
    const int64_t x = quad.areaX + right * quad.areaWidth / quad.width;
    const int64_t y = quad.areaY + down * quad.areaHeight / quad.height;
    if (x < visibleX || y < visibleY || x >= visibleX + texels.visibleWidth ||
        y >= visibleY + texels.visibleHeight) {
        return std::nullopt;
    }
    const uint32_t factor = shown.picture.factor;
    return PICTURE_POINT{static_cast<uint32_t>(x) / factor, static_cast<uint32_t>(y) / factor};
}

// The picture's first pixel, (0, 0), would mean nobody, so it counts as the one beside it.
uint64_t PackedPointer(const std::optional<PICTURE_POINT>& point) {
    if (!point) {
        return 0;
    }
    const uint64_t packed = uint64_t{point->y} << 32 | point->x;
    return packed != 0 ? packed : 1;
}

} // namespace

void LightGun::SetGame(const OPENED_GAME& game) {
    for (size_t player = 0; player < players.size(); ++player) {
        players[player] = PortTakesPointer(game.game.Header().system, game.options, player);
    }
}

void LightGun::Aim(const SHOWN_PICTURE& shown, const MOUSE_STATE& mouse, bool inUse) const {
    const uint64_t pointer = inUse ? PackedPointer(PointInPicture(shown, mouse)) : 0;
    const bool trigger = pointer != 0 && (mouse.left || mouse.leftPressed);
    for (size_t player = 0; player < players.size(); ++player) {
        gPointers[player] = players[player] ? pointer : 0;
        InputPointerTrigger(static_cast<uint32_t>(player), players[player] && trigger);
    }
}

void LightGun::LetGo() {
    for (size_t player = 0; player < std::size(gPointers); ++player) {
        gPointers[player] = 0;
        InputPointerTrigger(static_cast<uint32_t>(player), false);
    }
}

void LightGun::HandPointers(EMU_INPUT_STATE& input) {
    for (size_t player = 0; player < std::size(gPointers); ++player) {
        const uint64_t pointer = gPointers[player];
        input.pointer[player].x = static_cast<uint32_t>(pointer);
        input.pointer[player].y = static_cast<uint32_t>(pointer >> 32);
    }
}
