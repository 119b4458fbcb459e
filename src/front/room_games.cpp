#include "front/room_games.h"

#include "host/session.h"

#include <utility>

RoomGames::RoomGames(std::vector<OPENED_GAME> openedGames) {
    for (OPENED_GAME& opened : openedGames) {
        games.push_back(std::make_shared<const OPENED_GAME>(std::move(opened)));
    }
}

bool RoomGames::StartNext(uint32_t key) {
    if (games.empty()) {
        return false;
    }
    StartOn(key, games[next]);
    next = (next + 1) % games.size();
    return true;
}

void RoomGames::Start(uint32_t key, OPENED_GAME&& opened) {
    games.push_back(std::make_shared<const OPENED_GAME>(std::move(opened)));
    StartOn(key, games.back());
}

void RoomGames::StartOnce(uint32_t key, OPENED_GAME&& opened) {
    StartOn(key, std::make_shared<const OPENED_GAME>(std::move(opened)));
}

void RoomGames::StartOn(uint32_t key, const std::shared_ptr<const OPENED_GAME>& opened) {
    SET& set = sets[key];
    set.order = ++orders;
    set.state = SetState::kStarting;
    set.serial = 0;
    set.title = opened->title;
    set.identity = {};
    static_cast<void>(
        IdentifyGame(opened->game, static_cast<uint32_t>(opened->game.selectedName), set.identity));
    set.system = opened->game.Header().system;
    set.guns.SetGame(*opened);
    worker.Order({set.order, key, opened});
}

void RoomGames::Stop(uint32_t key) {
    const auto set = sets.find(key);
    if (set == sets.end() || set->second.state == SetState::kStopping) {
        return;
    }
    set->second.order = ++orders;
    set->second.state = SetState::kStopping;
    set->second.serial = 0;
    worker.Order({set->second.order, key, nullptr});
}

void RoomGames::StopAll() {
    for (const auto& [key, set] : sets) {
        Stop(key);
    }
    worker.Finish();
    static_cast<void>(Collect());
}

std::vector<std::string> RoomGames::Collect() {
    std::vector<std::string> errors;
    for (SESSION_RESULT& result : worker.TakeResults()) {
        TakeOver(result);
        if (!result.error.empty()) {
            errors.push_back(std::move(result.error));
        }
    }
    for (const auto& [key, set] : sets) {
        std::string reason;
        if (set.state == SetState::kPlaying && EmuHasEnded(key, reason)) {
            errors.push_back(std::move(reason));
            Stop(key);
        }
    }
    return errors;
}

// A later order for the same set makes this one a thing of the past.
void RoomGames::TakeOver(const SESSION_RESULT& result) {
    const auto set = sets.find(result.key);
    if (set == sets.end() || set->second.order != result.number) {
        return;
    }
    if (result.serial == 0) {
        sets.erase(set);
        return;
    }
    set->second.serial = result.serial;
    set->second.state = SetState::kPlaying;
}

const RoomGames::SET* RoomGames::Find(uint32_t key) const {
    const auto set = sets.find(key);
    return set != sets.end() && set->second.state != SetState::kStopping ? &set->second : nullptr;
}

SetState RoomGames::StateOf(uint32_t key) const {
    const auto set = sets.find(key);
    return set != sets.end() ? set->second.state : SetState::kOff;
}

uint32_t RoomGames::SerialOn(uint32_t key) const {
    const SET* const set = Find(key);
    return set != nullptr ? set->serial : 0;
}

std::vector<PLAYED_GAME> RoomGames::Playing() const {
    std::vector<PLAYED_GAME> playing;
    for (const auto& [key, set] : sets) {
        if (set.state == SetState::kPlaying) {
            playing.push_back({set.serial, set.identity});
        }
    }
    return playing;
}

std::string RoomGames::TitleOn(uint32_t key) const {
    const SET* const set = Find(key);
    return set != nullptr ? set->title : std::string();
}

uint16_t RoomGames::SystemOn(uint32_t key) const {
    const SET* const set = Find(key);
    return set != nullptr ? set->system : uint16_t{0};
}

std::string RoomGames::NextTitle() const {
    return games.empty() ? std::string() : games[next]->title;
}

const LightGun* RoomGames::GunsOn(uint32_t key) const {
    const SET* const set = Find(key);
    return set != nullptr ? &set->guns : nullptr;
}
