#include "screens/play_keys.h"

#include "facts/machine_facts.h"
#include "settings/bindings.h"
#include "settings/settings.h"

#include <algorithm>
#include <cwctype>
#include <span>

namespace {

struct BUTTON {
    std::wstring_view action;
    const wchar_t* does;
};

// What a player needs to know before the first game; the options list the rest.
constexpr BUTTON kMasterSystem[] = {
    {L"SMS P1 BUTTON1", L"1"    },
    {L"SMS P1 BUTTON2", L"2"    },
    {L"SMS PAUSE",      L"pause"},
};
constexpr BUTTON kGameGear[] = {
    {L"GG P1 BUTTON1", L"1"    },
    {L"GG P1 BUTTON2", L"2"    },
    {L"GG P1 START",   L"start"},
};
constexpr BUTTON kNes[] = {
    {L"NES P1 BUTTONA", L"A"     },
    {L"NES P1 BUTTONB", L"B"     },
    {L"NES P1 SELECT",  L"select"},
    {L"NES P1 START",   L"start" },
};
constexpr BUTTON kArcade[] = {
    {L"Arcade Insert Coin1", L"coin" },
    {L"Arcade Start1",       L"start"},
    {L"Arcade P1 BUTTON1",   L"1"    },
    {L"Arcade P1 BUTTON2",   L"2"    },
};
constexpr BUTTON kMegaDrive[] = {
    {L"MEGADRIVE P1 BUTTONA", L"A"    },
    {L"MEGADRIVE P1 BUTTONB", L"B"    },
    {L"MEGADRIVE P1 BUTTONC", L"C"    },
    {L"MEGADRIVE P1 BUTTONX", L"X"    },
    {L"MEGADRIVE P1 BUTTONY", L"Y"    },
    {L"MEGADRIVE P1 BUTTONZ", L"Z"    },
    {L"MEGADRIVE P1 START",   L"start"},
};

std::span<const BUTTON> ButtonsOf(uint16_t system) {
    switch (system) {
    case kSystemMasterSystem: return kMasterSystem;
    case kSystemGameGear: return kGameGear;
    case kSystemNes: return kNes;
    case kSystemArcade: return kArcade;
    case kSystemMegaDrive: return kMegaDrive;
    default: return {};
    }
}

// Binding names are in upper case throughout, which only single letters have on a key.
std::wstring AsOnKey(std::wstring name) {
    bool inWord = false;
    for (wchar_t& letter : name) {
        letter = static_cast<wchar_t>(inWord ? std::towlower(static_cast<wint_t>(letter))
                                             : static_cast<wint_t>(letter));
        inWord = std::iswalpha(static_cast<wint_t>(letter)) != 0;
    }
    return name;
}

} // namespace

std::wstring KeyOfAction(std::wstring_view action) {
    constexpr uint32_t kDevice = 0xFF000000; // 0 is the keyboard
    const auto [primary, secondary] = Settings().GetInt2(L"INPUT " + std::wstring(action));
    for (const int32_t bound : {primary, secondary}) {
        const auto binding = static_cast<uint32_t>(bound);
        if (binding != 0 && (binding & kDevice) == 0) {
            return AsOnKey(BindingName(binding));
        }
    }
    return {};
}

std::vector<std::wstring> DirectionKeys(const std::wstring_view (&actions)[4]) {
    std::vector<std::wstring> keys;
    for (const std::wstring_view action : actions) {
        if (std::wstring key = KeyOfAction(action); !key.empty()) {
            keys.push_back(std::move(key));
        }
    }
    static const std::vector<std::wstring> kArrows{L"Up", L"Down", L"Left", L"Right"};
    return keys == kArrows ? std::vector<std::wstring>{L"Arrow keys"} : keys;
}

std::vector<KEY_WORDS> PlayKeys(uint16_t system) {
    const MACHINE_FACTS* const facts = FindMachineFacts(system);
    if (facts == nullptr) {
        return {};
    }
    // A player's first four actions are the directions.
    const auto& player = facts->playerActions[0];
    std::vector<KEY_WORDS> words{
        {DirectionKeys({player[0], player[1], player[2], player[3]}), L"move"}
    };
    for (const BUTTON& button : ButtonsOf(system)) {
        if (std::wstring key = KeyOfAction(button.action); !key.empty()) {
            words.push_back({{std::move(key)}, button.does});
        }
    }
    if (words.front().keys.empty()) {
        words.erase(words.begin());
    }
    return words;
}
