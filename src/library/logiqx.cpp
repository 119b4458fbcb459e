#include "library/logiqx.h"

#include "library/xml_file.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>

namespace {

// A whole text as a number without a sign.
template <typename Number>
bool ParseNumber(std::string_view text, int base, Number& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, code] = std::from_chars(text.data(), end, number, base);
    return code == std::errc() && stop == end;
}

template <size_t Bytes>
bool ParseHex(std::string_view text, std::array<uint8_t, Bytes>& bytes) {
    if (text.size() != 2 * Bytes) {
        return false;
    }
    for (size_t i = 0; i < Bytes; ++i) {
        if (!ParseNumber(text.substr(2 * i, 2), 16, bytes[i])) {
            return false;
        }
    }
    return true;
}

class LogiqxReader {
public:
    explicit LogiqxReader(std::string_view source)
        : text(source) {}
    bool Read(LOGIQX_FILE& file);
    [[nodiscard]] const std::string& Fault() const { return fault; }

private:
    bool ReadGame(pugi::xml_node node, LOGIQX_GAME& game);
    bool ReadRom(pugi::xml_node node, LOGIQX_ROM& rom);
    bool ReadHashes(pugi::xml_node node, LOGIQX_ROM& rom);
    template <size_t Bytes>
    bool ReadHash(pugi::xml_node node, const char* name,
                  std::optional<std::array<uint8_t, Bytes>>& hash);
    bool Refuse(pugi::xml_node node, const std::string& reason);

    std::string_view text;
    XmlFile xml;
    std::map<std::string, std::string> nameOfId;
    std::string fault;
};

bool LogiqxReader::Refuse(pugi::xml_node node, const std::string& reason) {
    fault = xml.Fault(node, reason);
    return false;
}

// An empty attribute is none.
template <size_t Bytes>
bool LogiqxReader::ReadHash(pugi::xml_node node, const char* name,
                            std::optional<std::array<uint8_t, Bytes>>& hash) {
    const std::string_view value = node.attribute(name).value();
    if (value.empty()) {
        return true;
    }
    if (!ParseHex(value, hash.emplace())) {
        return Refuse(node, std::string(name) + " is not of " + std::to_string(2 * Bytes) +
                                " hexadecimal digits");
    }
    return true;
}

bool LogiqxReader::ReadHashes(pugi::xml_node node, LOGIQX_ROM& rom) {
    std::optional<std::array<uint8_t, 4>> crc;
    if (!ReadHash(node, "crc", crc) || !ReadHash(node, "sha1", rom.sha1) ||
        !ReadHash(node, "sha256", rom.sha256)) {
        return false;
    }
    if (crc) {
        const auto& bytes = *crc;
        rom.crc = uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 |
                  uint32_t{bytes[3]};
    }
    return true;
}

bool LogiqxReader::ReadRom(pugi::xml_node node, LOGIQX_ROM& rom) {
    constexpr std::string_view kStatuses[] = {"", "good", "verified", "baddump", "nodump"};
    rom.name = node.attribute("name").value();
    if (rom.name.empty()) {
        return Refuse(node, "a rom has no name");
    }
    const std::string_view status = node.attribute("status").value();
    if (std::ranges::find(kStatuses, status) == std::end(kStatuses)) {
        return Refuse(node, "there is no status \"" + std::string(status) + "\"");
    }
    rom.noDump = status == "nodump";
    if (rom.noDump) {
        return true;
    }
    const std::string_view size = node.attribute("size").value();
    if (!ParseNumber(size, 10, rom.size)) {
        return Refuse(node, "the size of " + rom.name + " is not a number");
    }
    return ReadHashes(node, rom);
}

// Lists also have "19??" for a year that is not known, and dates; only four digits count.
uint16_t YearOf(std::string_view text) {
    constexpr uint16_t kFirst = 1901; // the field of a game has a byte, from 1900, and 0 is unknown
    constexpr uint16_t kLast = 2155;
    uint16_t year = 0;
    if (text.size() < 4 || !ParseNumber(text.substr(0, 4), 10, year)) {
        return 0;
    }
    const bool ends = text.size() == 4 || text[4] == '-';
    return ends && year >= kFirst && year <= kLast ? year : uint16_t{0};
}

bool LogiqxReader::ReadGame(pugi::xml_node node, LOGIQX_GAME& game) {
    game.name = node.attribute("name").value();
    if (game.name.empty()) {
        return Refuse(node, "a game has no name");
    }
    game.cloneOf = node.attribute("cloneof").value();
    if (const auto parent = nameOfId.find(node.attribute("cloneofid").value());
        game.cloneOf.empty() && parent != nameOfId.end()) {
        game.cloneOf = parent->second;
    }
    game.description = node.child("description").text().get();
    game.bios = std::string_view(node.attribute("isbios").value()) == "yes";
    game.year = YearOf(node.child("year").text().get());
    for (const pugi::xml_node release : node.children("release")) {
        game.releases.push_back(
            {release.attribute("name").value(), release.attribute("region").value()});
        if (game.year == 0) {
            game.year = YearOf(release.attribute("date").value());
        }
    }
    return std::ranges::all_of(node.children("rom"), [&](pugi::xml_node rom) {
        return ReadRom(rom, game.roms.emplace_back());
    });
}

bool IsGame(pugi::xml_node node) {
    const std::string_view name = node.name();
    return name == "game" || name == "machine";
}

bool LogiqxReader::Read(LOGIQX_FILE& file) {
    if (!xml.Load(text, "datafile", fault)) {
        return false;
    }
    file.name = xml.Root().child("header").child("name").text().get();
    for (const pugi::xml_node node : xml.Root().children()) {
        if (const std::string id = node.attribute("id").value(); IsGame(node) && !id.empty()) {
            nameOfId.emplace(id, node.attribute("name").value());
        }
    }
    return std::ranges::all_of(xml.Root().children(), [&](pugi::xml_node node) {
        return !IsGame(node) || ReadGame(node, file.games.emplace_back());
    });
}

} // namespace

bool ParseLogiqx(std::string_view text, LOGIQX_FILE& file, std::string& fault) {
    file = {};
    LogiqxReader reader(text);
    if (!reader.Read(file)) {
        file = {};
        fault = reader.Fault();
        return false;
    }
    return true;
}
