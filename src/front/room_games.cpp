#include "front/room_games.h"

#include "front/game_start.h"
#include "host/session.h"

#include <utility>

bool RoomGames::StartNext(uint32_t key, std::string& error) {
    if (games.empty()) {
        error = "there is no game to play";
        return false;
    }
    const OPENED_GAME& game = games[next];
    next = (next + 1) % games.size();
    return StartOn(key, game, error);
}

bool RoomGames::Start(uint32_t key, OPENED_GAME&& opened, std::string& error) {
    games.push_back(std::move(opened));
    return StartOn(key, games.back(), error);
}

bool RoomGames::StartOn(uint32_t key, const OPENED_GAME& opened, std::string& error) {
    if (!StartGame(key, opened, error)) {
        sets.erase(key);
        return false;
    }
    SET& set = sets[key];
    set.title = opened.title;
    set.guns.SetGame(opened);
    return true;
}

void RoomGames::Stop(uint32_t key) {
    EmuStopSession(key);
    sets.erase(key);
}

void RoomGames::StopAll() {
    while (!sets.empty()) {
        Stop(sets.begin()->first);
    }
}

std::string RoomGames::TitleOn(uint32_t key) const {
    const auto set = sets.find(key);
    return set != sets.end() ? set->second.title : std::string();
}

std::string RoomGames::NextTitle() const {
    return games.empty() ? std::string() : games[next].title;
}

const LightGun* RoomGames::GunsOn(uint32_t key) const {
    const auto set = sets.find(key);
    return set != sets.end() ? &set->second.guns : nullptr;
}
