#include "front/game_screen.h"

#include "front/event_pump.h"
#include "front/light_gun.h"
#include "front/picture_view.h"
#include "front/televisions.h"
#include "gui/manager.h"
#include "host/host_data.h"

GameScreen::GameScreen(const Televisions& sets, const GAME_VIEW& gameView, const LightGun& gun,
                       uint32_t sessionKey)
    : televisions(sets)
    , view(gameView)
    , lightGun(gun)
    , key(sessionKey)
    , shownView(ViewNow())
    , mouseMoved(HostClock().nowMicroseconds()) {}

GameScreen::~GameScreen() {
    LightGun::LetGo();
}

bool GameScreen::Update(const SCREEN_INPUT& input) {
    NoteMouse(input);
    mouseRests = input.now - mouseMoved >= kMouseRests;
    AimLightGuns(input);
    const FULL_SCREEN_VIEW before = shownView;
    shownView = ViewNow();
    const bool news = shownView != before;
    return news;
}

FULL_SCREEN_VIEW GameScreen::ViewNow() const {
    return FullScreenViewOf(view, televisions.SystemOf(key));
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

// A game alone in the window.
Pointer GameScreen::PointerWanted() const {
    return PointerFor({ProgramMode::kFullScreen, CGhostManager::Get().ModalWindow() != nullptr,
                       mouseRests, false, lightGun.InGame()});
}

void GameScreen::AimLightGuns(const SCREEN_INPUT& input) const {
    const SHOWN_PICTURE shown = {televisions.Picture(key), ViewNow(), input.target.width,
                                 input.target.height};
    lightGun.Aim(shown, input.mouse, !mouseRests); // then keys aim again
}

void GameScreen::Draw(const DRAW_TARGET& target) {
    televisions.Painter().Draw(televisions.Picture(key), ViewNow(), target.width, target.height);
}
