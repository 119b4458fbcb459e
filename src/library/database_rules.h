// Rules: what a list of games does not say and a database should hold. docs/FORMATS.md describes the file.
#pragma once

#include "formats/game_file.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What a rule changes in the names of the games that it is for; the others stay.
struct DATABASE_RULE {
    std::string pattern; // compared with the list's names; "*" matches any text
    std::optional<uint8_t> year;
    std::optional<uint8_t> playTypes;
    std::optional<uint8_t> status;
    std::optional<std::string> regions;
    // Of machine records; a rule for another machine has none of them.
    std::optional<bool> fm;
    std::optional<bool> glasses;
    std::optional<uint8_t> inputs[2];
    std::optional<uint8_t> consoles;
    std::optional<uint8_t> kind;
    std::optional<uint32_t> board;
};

// False for a file that is damaged, is for another machine or has a word that means nothing there; `fault` is one line
// that begins with the number of the file's line.
[[nodiscard]] bool ParseDatabaseRules(std::string_view text, uint16_t system,
                                      std::vector<DATABASE_RULE>& rules, std::string& fault);

[[nodiscard]] bool MatchesPattern(std::string_view pattern, std::string_view name);

// A name's play types, and a machine record, in the words of rules: `single,versus` and `fm="1" board="sega"`. Empty for a
// record that says nothing.
[[nodiscard]] std::string PlayWords(uint8_t playTypes);
[[nodiscard]] std::string RecordWords(uint16_t system, const uint8_t* record);

// Applies a rule to a name and its machine record, which must be of the rules' system.
void ApplyRule(const DATABASE_RULE& rule, uint16_t system, NAME_RECORD& name,
               MACHINE_RECORD& record);
