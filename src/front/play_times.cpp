#include "front/play_times.h"

#include "library/player_database.h"

#include <algorithm>

namespace {

constexpr int64_t kSecond = 1'000'000;
constexpr int64_t kTold = 60 * kSecond;

} // namespace

void PlayTimes::Update(std::span<const PLAYED_GAME> playing, int64_t now) {
    for (const PLAYED_GAME& game : playing) {
        const auto [count, begins] = counts.try_emplace(game.serial, COUNT{game.identity, now});
        if (begins) {
            database.NoteStart(game.identity);
        } else if (now - count->second.since >= kTold) {
            Tell(count->second, now);
        }
    }
    for (auto entry = counts.begin(); entry != counts.end();) {
        const bool runs = std::ranges::any_of(
            playing, [&](const PLAYED_GAME& game) { return game.serial == entry->first; });
        if (runs) {
            ++entry;
        } else {
            Tell(entry->second, now);
            entry = counts.erase(entry);
        }
    }
}

int64_t PlayTimes::Untold(uint32_t serial, int64_t now) const {
    const auto count = counts.find(serial);
    return count == counts.end() ? 0 : (now - count->second.since) / kSecond;
}

// Whole seconds; what is left of one counts with the next.
void PlayTimes::Tell(COUNT& count, int64_t now) {
    const int64_t seconds = (now - count.since) / kSecond;
    if (seconds > 0) {
        database.NotePlayed(count.game, seconds);
        count.since += seconds * kSecond;
    }
}
