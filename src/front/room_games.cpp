#include "front/room_games.h"

#include "base/helper_thread.h"
#include "front/resume_texts.h"
#include "host/session.h"

#include <thread>
#include <utility>

RoomGames::RoomGames(std::vector<OPENED_GAME> openedGames, ResumeGames* resume)
    : resumeGames(resume) {
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

// Its image and its BIOS are let go when the session has taken them over.
void RoomGames::Start(uint32_t key, OPENED_GAME&& opened) {
    StartOn(key, std::make_shared<const OPENED_GAME>(std::move(opened)));
}

void RoomGames::StartAndKeep(uint32_t key, OPENED_GAME&& opened) {
    games.push_back(std::make_shared<const OPENED_GAME>(std::move(opened)));
    StartOn(key, games.back());
}

void RoomGames::GoOn(uint32_t key, OPENED_GAME&& opened, const LEFT_GAME& left) {
    const auto game = std::make_shared<const OPENED_GAME>(std::move(opened));
    OrderStart(key, game, resumeGames->GoOn(left, *game));
}

void RoomGames::StartOn(uint32_t key, const std::shared_ptr<const OPENED_GAME>& opened) {
    OrderStart(key, opened,
               resumeGames != nullptr ? resumeGames->Start(key, *opened) : GAME_RESUME());
}

void RoomGames::OrderStart(uint32_t key, const std::shared_ptr<const OPENED_GAME>& opened,
                           GAME_RESUME resume) {
    SET& set = sets[key];
    set.order = ++orders;
    set.state = SetState::kStarting;
    set.serial = 0;
    set.title = opened->title;
    set.identity = {};
    static_cast<void>(
        IdentifyGame(opened->game, static_cast<uint32_t>(opened->game.selectedName), set.identity));
    set.system = opened->game.Header().system;
    set.texts = opened->file.empty() ? std::vector<SNAPSHOT_TEXT>() : ResumeTexts(key, *opened);
    set.guns.SetGame(*opened);
    worker.Order({set.order, key, opened, std::move(resume), SessionEnd::kTurnedOff});
}

void RoomGames::Stop(uint32_t key) {
    OrderStop(key, SessionEnd::kTurnedOff);
}

void RoomGames::OrderStop(uint32_t key, SessionEnd end) {
    const auto set = sets.find(key);
    if (set == sets.end() || set->second.state == SetState::kStopping) {
        return;
    }
    set->second.order = ++orders;
    set->second.state = SetState::kStopping;
    set->second.serial = 0;
    worker.Order({set->second.order, key, nullptr, {}, end});
}

// All at once: each waits for the end of its machine's frame and for the disk.
void RoomGames::StopAll() {
    worker.Finish();
    for (const SESSION_RESULT& result : worker.TakeResults()) {
        TakeOver(result);
    }
    std::vector<std::thread> stops;
    stops.reserve(sets.size());
    for (const auto& [key, set] : sets) {
        stops.emplace_back([key = key] {
            HelperBegins();
            static_cast<void>(EmuStopSession(key, SessionEnd::kProgramEnds));
        });
    }
    for (std::thread& stop : stops) {
        stop.join();
    }
    sets.clear();
}

std::vector<GAME_FAILURE> RoomGames::Collect() {
    std::vector<GAME_FAILURE> failures;
    for (SESSION_RESULT& result : worker.TakeResults()) {
        TakeOver(result);
        if (result.failed) {
            failures.push_back({true, std::move(result.reason), result.key, {}});
        }
    }
    for (const auto& [key, set] : sets) {
        std::string reason;
        if (set.state == SetState::kPlaying && EmuHasEnded(key, reason)) {
            STATE_SNAPSHOT label;
            label.texts = set.texts;
            failures.push_back({false, std::move(reason), key, std::move(label)});
            Stop(key);
        }
    }
    return failures;
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
