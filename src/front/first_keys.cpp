#include "front/first_keys.h"

#include "gui/manager.h"
#include "host/session_list.h"
#include "screens/key_card.h"
#include "settings/settings.h"

#include <utility>

namespace {

constexpr int64_t kShown = 5000000; // microseconds
constexpr const wchar_t* kCount = L"app_keycards";

bool Wanted() {
    return Settings().GetBool(L"app_keycard") && Settings().GetInt(kCount) < kGamesWithKeys;
}

// Not television static, which comes before a game.
bool ShowsItself(const KEYS_GAME& game) {
    const SessionPin session = PinSession(game.key);
    return session && session->serial == game.serial && session->showStatic == 0;
}

} // namespace

FirstKeys::FirstKeys(std::function<void()> needAppearance)
    : appearance(std::move(needAppearance)) {}

FirstKeys::~FirstKeys() = default;

void FirstKeys::Update(const KEYS_GAME& game, int64_t now) {
    const bool covered = CGhostManager::Get().ModalWindow() != nullptr;
    if (card != nullptr && (covered || game.serial != serial || now >= until)) {
        card.reset();
    }
    if (card != nullptr) {
        card->Update();
        return;
    }
    if (game.serial == 0 || game.serial == serial || covered || !Wanted() || !ShowsItself(game)) {
        return;
    }
    serial = game.serial;
    until = now + kShown;
    Settings().SetInt(kCount, Settings().GetInt(kCount) + 1);
    if (appearance) {
        appearance();
    }
    card = std::make_unique<KeyCard>(game.system, game.padNames, game.ways);
}
