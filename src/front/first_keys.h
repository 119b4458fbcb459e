// FirstKeys: in the first games that a player starts, the keys of the machine are shown over the game for five seconds,
// from its first picture on (screens/key_card.h). How many games have shown them is kept in the settings, where
// they can also be turned off.
//
// Thread: main. Order: Update once a round, before the toolkit's tick.
#pragma once

#include "screens/controls_card.h"
#include "screens/key_line.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

class KeyCard;

inline constexpr int32_t kGamesWithKeys = 3;

// The game that is played now; serial 0: none.
struct KEYS_GAME {
    uint32_t key = 0;
    uint32_t serial = 0;
    uint16_t system = 0;
    PadNames padNames;
    std::vector<KEY_WORDS> ways; // how its menu is opened, and how it is left
};

class FirstKeys {
public:
    // `needAppearance` is called before windows are made.
    explicit FirstKeys(std::function<void()> needAppearance = {});
    ~FirstKeys();
    FirstKeys(const FirstKeys&) = delete;
    FirstKeys& operator=(const FirstKeys&) = delete;

    // `now` in microseconds of the host's clock.
    void Update(const KEYS_GAME& game, int64_t now);
    [[nodiscard]] const KeyCard* Card() const { return card.get(); } // null while it is not shown

private:
    std::function<void()> appearance;
    std::unique_ptr<KeyCard> card;
    uint32_t serial = 0; // of the game that has shown them, or need not
    int64_t until = 0;
};
