// The keys that docs/PLAYING.md tells the player: what is bound on a first run, or a fixed key of the window.
#include "base/files.h"
#include "facts/machine_facts.h"
#include "front/action_list.h"
#include "settings/settings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Rows = std::vector<std::vector<std::string>>;

std::string Upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

std::string Trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" ,;:");
    return first == std::string::npos
               ? std::string()
               : text.substr(first, text.find_last_not_of(" ,;:") + 1 - first);
}

// The cells of the table whose first heading this is.
Rows Table(const std::string& heading) {
    std::vector<uint8_t> bytes;
    std::string error;
    EXPECT_TRUE(ReadFile(OMBRELUNE_SOURCE_FOLDER "/docs/PLAYING.md", bytes, error, 1 << 20))
        << error;
    std::istringstream text(std::string(bytes.begin(), bytes.end()));
    Rows rows;
    bool inside = false;
    for (std::string line; std::getline(text, line);) {
        inside = inside ? line.starts_with("|") : line.starts_with("| " + heading + " |");
        if (inside && !line.starts_with("| ---")) {
            std::istringstream cells(line.substr(1));
            rows.emplace_back();
            for (std::string cell; std::getline(cells, cell, '|');) {
                rows.back().push_back(Trimmed(cell));
            }
        }
    }
    EXPECT_GT(rows.size(), 1u) << heading;
    rows.erase(rows.begin());
    return rows;
}

// Keys stand between backquotes; what a key does stands before it.
std::vector<std::pair<std::string, std::string>> KeysIn(const std::string& cell) {
    std::vector<std::pair<std::string, std::string>> keys;
    std::istringstream parts(cell);
    for (std::string before, key;
         std::getline(parts, before, '`') && std::getline(parts, key, '`');) {
        keys.emplace_back(Trimmed(before), key);
    }
    return keys;
}

// What `ombrelune actions` lists on a first run; null: the program's own actions.
std::vector<ACTION_LINE> LinesOf(const MACHINE_FACTS* machine) {
    RegisterDefaultSettings(Settings());
    for (ACTION_GROUP& group : ListActions()) {
        if (group.machine == machine) {
            return std::move(group.actions);
        }
    }
    ADD_FAILURE() << "is not listed";
    return {};
}

// "Shift+Tab" is told as "Shift + Tab", "Digit 5" as "5".
std::string AsTold(const ACTION_LINE& line) {
    std::string key = line.inputs.empty() ? std::string() : Upper(line.inputs.front());
    if (const size_t plus = key.find('+'); plus != std::string::npos) {
        key.replace(plus, 1, " + ");
    }
    return key.starts_with("DIGIT ") ? key.substr(6) : key;
}

// "SMS P1 BUTTON1" is told as "1", "Arcade Insert Coin1" as "Coin1", "NES P1 START" as "Start".
std::string ToldAs(const std::string& action) {
    std::string word = action.substr(action.rfind(' ') + 1);
    return word.starts_with("BUTTON") ? word.substr(6) : Upper(word);
}

// Directions are told without names, in the order of a player's first four actions.
std::map<std::string, std::string> ToldIn(const std::string& cell) {
    std::map<std::string, std::string> told;
    constexpr std::string_view kDirections = "directions ";
    const size_t begin = cell.find(kDirections);
    if (begin == std::string::npos) {
        return {}; // has no controls of his own
    }
    const size_t end = cell.find(';', begin);
    const char* const names[] = {"UP", "DOWN", "LEFT", "RIGHT"};
    size_t name = 0;
    for (const auto& [before, key] : KeysIn(cell.substr(begin, end - begin))) {
        told[names[name++ % 4]] = Upper(key);
    }
    EXPECT_EQ(name, 4u) << cell;
    for (const auto& [does, key] : KeysIn(cell.substr(end))) {
        const size_t colon = does.rfind(": ");
        const std::string what = Upper(colon == std::string::npos ? does : does.substr(colon + 2));
        EXPECT_TRUE(told.emplace(what, Upper(key)).second) << does;
    }
    return told;
}

} // namespace

TEST(PlayingKeys, OfEachMachineAreThoseOfAFirstRun) {
    const Rows rows = Table("machine | player 1");
    ASSERT_EQ(rows.size(), MachineFacts().size());
    for (const MACHINE_FACTS& machine : MachineFacts()) {
        const auto row = std::find_if(rows.begin(), rows.end(), [&](const auto& cells) {
            return Upper(cells.at(0)).find(Upper(machine.name)) != std::string::npos;
        });
        ASSERT_NE(row, rows.end()) << machine.name;
        for (size_t player = 0; player < kMachinePlayers; ++player) {
            std::map<std::string, std::string> wanted;
            for (const ACTION_LINE& line : LinesOf(&machine)) {
                if ((line.action.find(" P2 ") != std::string::npos) == (player == 1)) {
                    wanted[ToldAs(line.action)] = AsTold(line);
                }
            }
            EXPECT_EQ(ToldIn(row->at(1 + player)), wanted) << machine.name << " " << player;
        }
    }
}

TEST(PlayingKeys, OfTheProgramAreThoseOfAFirstRun) {
    std::map<std::string, std::string> wanted;
    for (const ACTION_LINE& line : LinesOf(nullptr)) {
        wanted[line.action] = AsTold(line);
    }
    std::map<std::string, std::string> told;
    for (const auto& cells : Table("action")) {
        std::istringstream names(cells.at(0));
        const auto keys = KeysIn(cells.at(1));
        size_t at = 0;
        for (std::string name; std::getline(names, name, ','); ++at) {
            ASSERT_LT(at, keys.size()) << cells.at(0);
            EXPECT_TRUE(told.emplace(Trimmed(name), Upper(keys[at].second)).second) << name;
        }
        EXPECT_EQ(at, keys.size()) << cells.at(0);
    }
    EXPECT_EQ(told, wanted);
}

TEST(PlayingKeys, OfTheWindowAreItsFixedOnes) {
    std::set<std::string> told;
    for (const auto& cells : Table("the window's own key")) {
        for (const auto& [before, key] : KeysIn(cells.at(0))) {
            told.insert(key);
        }
    }
    std::set<std::string> wanted;
    for (const WINDOW_KEY& key : ListWindowKeys()) {
        wanted.insert(key.key);
    }
    EXPECT_EQ(told, wanted);
}
