#include "front/game_screen.h"

#include "display/full_screen.h"
#include "front/event_pump.h"
#include "front/light_gun.h"
#include "front/televisions.h"
#include "gui/manager.h"
#include "host/host_data.h"

#include <SDL_events.h>
#include <SDL_mouse.h>

namespace {

// Microseconds without a move.
constexpr int64_t kCursorStays = 2000000;
constexpr int64_t kMouseAims = 3000000; // then keys aim again

} // namespace

GameScreen::GameScreen(const Televisions& sets, const GAME_VIEW& gameView, const LightGun& gun,
                       uint32_t sessionKey)
    : televisions(sets)
    , view(gameView)
    , lightGun(gun)
    , key(sessionKey)
    , shownView(gameView)
    , mouseMoved(HostClock().nowMicroseconds()) {}

GameScreen::~GameScreen() {
    LightGun::LetGo();
    SDL_ShowCursor(SDL_ENABLE);
}

bool GameScreen::Update(const SCREEN_INPUT& input) {
    NoteMouse(input);
    HideIdleCursor(input.now);
    AimLightGuns(input);
    const bool news = view != shownView;
    shownView = view;
    return news;
}

void GameScreen::NoteMouse(const SCREEN_INPUT& input) {
    const MOUSE_STATE& mouse = input.mouse;
    if (mouse.x != lastX || mouse.y != lastY || mouse.left || mouse.leftPressed ||
        CGhostManager::Get().ModalWindow() != nullptr) {
        mouseMoved = input.now;
    }
    lastX = mouse.x;
    lastY = mouse.y;
}

// Over a game an unused cursor is in the way.
void GameScreen::HideIdleCursor(int64_t now) {
    const bool show = now - mouseMoved < kCursorStays;
    if (show != cursorShown) {
        SDL_ShowCursor(show ? SDL_ENABLE : SDL_DISABLE);
        cursorShown = show;
    }
}

void GameScreen::AimLightGuns(const SCREEN_INPUT& input) const {
    const SHOWN_PICTURE shown = {televisions.Picture(key), view.crop, input.target.width,
                                 input.target.height};
    lightGun.Aim(shown, input.mouse, input.now - mouseMoved < kMouseAims);
}

void GameScreen::Draw(const DRAW_TARGET& target) {
    DrawFullScreen(televisions.Picture(key), {view.crop, view.linear}, target.width, target.height);
}
