#include "front/game_screen.h"

#include "display/full_screen.h"
#include "front/event_pump.h"
#include "front/televisions.h"
#include "host/host_data.h"
#include "settings/bindings.h"

#include <SDL_events.h>
#include <SDL_mouse.h>

namespace {

constexpr int64_t kCursorStays = 2000000; // microseconds without a move

} // namespace

GameScreen::GameScreen(const Televisions& sets)
    : televisions(sets)
    , mouseMoved(HostClock().nowMicroseconds()) {}

bool GameScreen::Update(const SCREEN_INPUT& input) {
    HideIdleCursor(input);
    const bool news = view != shownView;
    shownView = view;
    return news;
}

// Over a game an unused cursor is in the way.
void GameScreen::HideIdleCursor(const SCREEN_INPUT& input) {
    const MOUSE_STATE& mouse = input.mouse;
    if (mouse.x != lastX || mouse.y != lastY || mouse.left || mouse.leftPressed) {
        mouseMoved = input.now;
    }
    lastX = mouse.x;
    lastY = mouse.y;
    const bool show = input.now - mouseMoved < kCursorStays;
    if (show != cursorShown) {
        SDL_ShowCursor(show ? SDL_ENABLE : SDL_DISABLE);
        cursorShown = show;
    }
}

void GameScreen::Draw(const DRAW_TARGET& target) {
    DrawFullScreen(televisions.Picture(InputActiveKey()), {view.crop, view.linear}, target.width,
                   target.height);
}
