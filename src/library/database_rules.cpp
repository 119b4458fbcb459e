#include "library/database_rules.h"

#include "facts/machine_facts.h"
#include "facts/sms_facts.h"
#include "library/xml_file.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <span>

namespace {

struct WORD {
    std::string_view word;
    uint32_t value;
};
constexpr WORD kPlayWords[] = {
    {"single", 1},
    {"coop",   2},
    {"versus", 4},
    {"turns",  8},
};
constexpr WORD kBoardWords[] = {
    {"sega",        1},
    {"codemasters", 2},
    {"korean",      3},
};
constexpr WORD kSwitchWords[] = {
    {"0", 0},
    {"1", 1},
};

std::vector<WORD> WordsOf(std::span<const OPTION_VALUE> values) {
    std::vector<WORD> words;
    for (const OPTION_VALUE& value : values) {
        words.push_back({value.word, value.byte});
    }
    return words;
}

std::string ListOf(std::span<const WORD> words) {
    std::string list;
    for (const WORD& word : words) {
        list += list.empty() ? "" : "|";
        list += word.word;
    }
    return list;
}

std::optional<uint32_t> FindWord(std::span<const WORD> words, std::string_view word) {
    const auto found = std::ranges::find(words, word, &WORD::word);
    return found == words.end() ? std::nullopt : std::optional(found->value);
}

std::optional<uint32_t> ParseNumber(std::string_view text, uint32_t first, uint32_t last) {
    uint32_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, code] = std::from_chars(text.data(), end, number);
    const bool whole = code == std::errc() && stop == end;
    return whole && number >= first && number <= last ? std::optional(number) : std::nullopt;
}

// Reads the attributes of one rule. The first fault stays.
class RuleReader {
public:
    RuleReader(uint16_t machine, DATABASE_RULE& made)
        : system(machine)
        , rule(made) {}

    bool Read(std::string_view name, std::string_view value, std::string& fault);

private:
    bool ReadCommon(std::string_view name);
    bool ReadSms(std::string_view name);
    void Number(std::optional<uint8_t>& field, uint32_t first, uint32_t last, uint32_t origin = 0);
    void Words(std::optional<uint8_t>& field, std::span<const WORD> words, bool several);
    void Switch(std::optional<bool>& field);
    void Regions();
    void Board();

    uint16_t system;
    DATABASE_RULE& rule;
    std::string_view text;
    std::string expected; // empty: the value is right
};

void RuleReader::Number(std::optional<uint8_t>& field, uint32_t first, uint32_t last,
                        uint32_t origin) {
    const auto number = ParseNumber(text, first, last);
    if (number) {
        field = static_cast<uint8_t>(*number - origin);
    } else {
        expected = std::to_string(first) + " to " + std::to_string(last);
    }
}

void RuleReader::Words(std::optional<uint8_t>& field, std::span<const WORD> words, bool several) {
    uint32_t value = 0;
    std::string_view rest = text;
    while (true) {
        const size_t comma = several ? rest.find(',') : std::string_view::npos;
        const auto found = FindWord(words, rest.substr(0, comma));
        if (!found) {
            expected = (several ? "a list of " : "") + ListOf(words);
            return;
        }
        value |= *found;
        if (comma == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(comma + 1);
    }
    field = static_cast<uint8_t>(value);
}

void RuleReader::Switch(std::optional<bool>& field) {
    const auto found = FindWord(kSwitchWords, text);
    if (found) {
        field = *found != 0;
    } else {
        expected = ListOf(kSwitchWords);
    }
}

void RuleReader::Regions() {
    if (text.size() <= 5 && text.find_first_not_of("EJUBK") == std::string_view::npos) {
        rule.regions = text;
    } else {
        expected = "letters of EJUBK";
    }
}

// The arcade boards have numbers only.
void RuleReader::Board() {
    constexpr uint32_t kLastArcadeBoard = 7;
    constexpr uint32_t kLastBoard = 65535;
    const bool arcade = system == kSystemArcade;
    rule.board = arcade ? std::nullopt : FindWord(kBoardWords, text);
    if (!rule.board) {
        rule.board =
            arcade ? ParseNumber(text, 1, kLastArcadeBoard) : ParseNumber(text, 0, kLastBoard);
    }
    if (!rule.board) {
        expected = arcade ? "1 to 7" : ListOf(kBoardWords) + " or a number";
    }
}

// False for an unknown name.
bool RuleReader::ReadCommon(std::string_view name) {
    constexpr uint32_t kFirstYear = 1900; // means that the year is unknown
    constexpr uint32_t kLastYear = 2155;
    constexpr uint32_t kLastStatus = 127;
    if (name == "year") {
        Number(rule.year, kFirstYear, kLastYear, kFirstYear);
    } else if (name == "status") {
        Number(rule.status, 0, kLastStatus);
    } else if (name == "play") {
        Words(rule.playTypes, kPlayWords, true);
    } else if (name == "regions") {
        Regions();
    } else {
        return false;
    }
    return true;
}

bool RuleReader::ReadSms(std::string_view name) {
    constexpr uint32_t kLastKind = 255;
    if (name == "fm") {
        Switch(rule.fm);
    } else if (name == "glasses") {
        Switch(rule.glasses);
    } else if (name == "input1" || name == "input2") {
        Words(rule.inputs[name == "input1" ? 0 : 1], WordsOf(kSmsDeviceValues), false);
    } else if (name == "consoles") {
        Words(rule.consoles, WordsOf(kSmsConsoleValues), true);
    } else if (name == "kind") {
        Number(rule.kind, 0, kLastKind);
    } else {
        return false;
    }
    return true;
}

bool RuleReader::Read(std::string_view name, std::string_view value, std::string& fault) {
    text = value;
    const bool hasBoard =
        system == kSystemMasterSystem || system == kSystemGameGear || system == kSystemArcade;
    if (name == "name") {
        rule.pattern = value;
    } else if (name == "board" && hasBoard) {
        Board();
    } else if (!ReadCommon(name) && !(system == kSystemMasterSystem && ReadSms(name))) {
        fault = "a rule of this machine has no \"" + std::string(name) + "\"";
        return false;
    }
    if (!expected.empty()) {
        fault = std::string(name) + "=\"" + std::string(value) + "\" is not " + expected;
        return false;
    }
    return true;
}

bool ReadRule(const XmlFile& xml, pugi::xml_node node, uint16_t system, DATABASE_RULE& rule,
              std::string& fault) {
    std::string reason;
    RuleReader reader(system, rule);
    for (const pugi::xml_attribute attribute : node.attributes()) {
        if (!reader.Read(attribute.name(), attribute.value(), reason)) {
            fault = xml.Fault(node, reason);
            return false;
        }
    }
    if (rule.pattern.empty()) {
        fault = xml.Fault(node, "a rule has no name");
        return false;
    }
    return true;
}

bool ReadRules(const XmlFile& xml, uint16_t system, std::vector<DATABASE_RULE>& rules,
               std::string& fault) {
    const MACHINE_FACTS* const facts = FindMachineFacts(system);
    const std::string_view machine = xml.Root().attribute("machine").value();
    if (facts == nullptr || machine != facts->shortName) {
        fault =
            xml.Fault(xml.Root(), "the rules are for the machine \"" + std::string(machine) + "\"");
        return false;
    }
    for (const pugi::xml_node node : xml.Root().children()) {
        if (node.type() != pugi::node_element) {
            continue;
        }
        if (std::string_view(node.name()) != "game") {
            fault = xml.Fault(node, "there is no rule <" + std::string(node.name()) + ">");
            return false;
        }
        if (!ReadRule(xml, node, system, rules.emplace_back(), fault)) {
            return false;
        }
    }
    return true;
}

template <typename Field, typename Value>
void Set(Field& field, const std::optional<Value>& value) {
    if (value) {
        field = static_cast<Field>(*value);
    }
}

void SetBit(uint8_t& bits, uint8_t bit, const std::optional<bool>& value) {
    if (value) {
        bits = static_cast<uint8_t>(*value ? bits | bit : bits & ~bit);
    }
}

void ApplyToSms(const DATABASE_RULE& rule, SMS_RECORD& sms) {
    SetBit(sms.features, kSmsFeatureFm, rule.fm);
    SetBit(sms.features, kSmsFeatureGlasses, rule.glasses);
    // Copied, as the record's fields may lie anywhere.
    uint32_t input1 = sms.input1;
    uint32_t input2 = sms.input2;
    uint16_t board = sms.board;
    Set(input1, rule.inputs[0]);
    Set(input2, rule.inputs[1]);
    Set(board, rule.board);
    sms.input1 = input1;
    sms.input2 = input2;
    sms.board = board;
    Set(sms.consoles, rule.consoles);
    Set(sms.kind, rule.kind);
}

// Changes the bytes of a machine record as the record that they are.
template <typename Record, typename Change>
void Edit(MACHINE_RECORD& bytes, Change change) {
    Record record{};
    std::memcpy(&record, bytes.bytes, sizeof record);
    change(record);
    std::memcpy(bytes.bytes, &record, sizeof record);
}

std::string Attribute(std::string_view name, const std::string& value) {
    return std::string(name) + "=\"" + value + "\"";
}

// The word of a value, or its number.
std::string WordOf(std::span<const WORD> words, uint32_t value) {
    const auto found = std::ranges::find(words, value, &WORD::value);
    return found == words.end() ? std::to_string(value) : std::string(found->word);
}

// The words of a value's bits.
std::string WordsOfBits(std::span<const WORD> words, uint32_t bits) {
    std::string list;
    for (const WORD& word : words) {
        if ((bits & word.value) != 0) {
            list += list.empty() ? "" : ",";
            list += word.word;
        }
    }
    return list;
}

std::string SmsWords(const SMS_RECORD& sms) {
    const bool fm = (sms.features & kSmsFeatureFm) != 0;
    const bool glasses = (sms.features & kSmsFeatureGlasses) != 0;
    const std::vector<WORD> devices = WordsOf(kSmsDeviceValues);
    return Attribute("fm", fm ? "1" : "0") + " " + Attribute("glasses", glasses ? "1" : "0") + " " +
           Attribute("input1", WordOf(devices, sms.input1)) + " " +
           Attribute("input2", WordOf(devices, sms.input2)) + " " +
           Attribute("board", WordOf(kBoardWords, sms.board)) + " " +
           Attribute("consoles", WordsOfBits(WordsOf(kSmsConsoleValues), sms.consoles)) + " " +
           Attribute("kind", std::to_string(sms.kind));
}

template <typename Record>
Record RecordAt(const uint8_t* bytes) {
    Record record{};
    std::memcpy(&record, bytes, sizeof record);
    return record;
}

} // namespace

std::string PlayWords(uint8_t playTypes) {
    return WordsOfBits(kPlayWords, playTypes);
}

std::string RecordWords(uint16_t system, const uint8_t* record) {
    switch (system) {
    case kSystemMasterSystem: return SmsWords(RecordAt<SMS_RECORD>(record));
    case kSystemGameGear:
        return Attribute("board", WordOf(kBoardWords, RecordAt<GAG_RECORD>(record).board));
    case kSystemArcade:
        return Attribute("board", std::to_string(RecordAt<ARC_RECORD>(record).board));
    default: return {};
    }
}

bool ParseDatabaseRules(std::string_view text, uint16_t system, std::vector<DATABASE_RULE>& rules,
                        std::string& fault) {
    rules.clear();
    XmlFile xml;
    if (!xml.Load(text, "rules", fault) || !ReadRules(xml, system, rules, fault)) {
        rules.clear();
        return false;
    }
    return true;
}

bool MatchesPattern(std::string_view pattern, std::string_view name) {
    // Where to go on after a star: one more letter of the name is then its.
    size_t starAt = std::string_view::npos;
    size_t starName = 0;
    size_t p = 0;
    size_t n = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            starAt = p++;
            starName = n;
        } else if (p < pattern.size() && pattern[p] == name[n]) {
            ++p;
            ++n;
        } else if (starAt != std::string_view::npos) {
            p = starAt + 1;
            n = ++starName;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

void ApplyRule(const DATABASE_RULE& rule, uint16_t system, NAME_RECORD& name,
               MACHINE_RECORD& record) {
    Set(name.year, rule.year);
    Set(name.playTypes, rule.playTypes);
    Set(name.status, rule.status);
    if (rule.regions) {
        std::memset(name.regions, 0, sizeof name.regions);
        std::copy(rule.regions->begin(), rule.regions->end(), name.regions);
    }
    if (system == kSystemMasterSystem) {
        Edit<SMS_RECORD>(record, [&](SMS_RECORD& sms) { ApplyToSms(rule, sms); });
    } else if (system == kSystemGameGear && rule.board) {
        Edit<GAG_RECORD>(
            record, [&](GAG_RECORD& gear) { gear.board = static_cast<uint16_t>(*rule.board); });
    } else if (system == kSystemArcade && rule.board) {
        Edit<ARC_RECORD>(record, [&](ARC_RECORD& arcade) { arcade.board = *rule.board; });
    }
}
