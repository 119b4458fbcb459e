#include "support/state_table.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace {

constexpr uint32_t kHeaderBytes = 5;
constexpr std::string_view kAndMore =
    " and more"; // after the size of a piece that is longer than its table

using CELLS = std::vector<std::string>;

struct SECTION {
    std::vector<CELLS> rows;                           // of the table under the heading
    std::map<std::string, std::vector<CELLS>> records; // of the tables under its own headings
};

std::string Trim(const std::string& text) {
    const size_t first = text.find_first_not_of(' ');
    return first == std::string::npos ? ""
                                      : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

CELLS Split(const std::string& text, char separator) {
    CELLS cells;
    std::istringstream stream(text);
    for (std::string cell; std::getline(stream, cell, separator);) {
        cells.push_back(Trim(cell));
    }
    return cells;
}

uint32_t Number(const std::string& text) {
    if (text.empty() ||
        !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; })) {
        throw std::runtime_error("no number: " + text);
    }
    return static_cast<uint32_t>(std::stoul(text));
}

// All sections by their headings; the rules under the titles of the columns are left out.
std::map<std::string, SECTION> ReadSections() {
    std::ifstream file(OMBRELUNE_SOURCE_FOLDER "/docs/STATES.md");
    std::map<std::string, SECTION> sections;
    std::string piece;
    std::string record;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("#### ", 0) == 0) {
            record = line.substr(5);
        } else if (line.rfind('#', 0) == 0) {
            piece = line.substr(line.find(' ') + 1);
            record.clear();
            sections[piece];
        } else if (line.rfind("| ", 0) == 0 && line.rfind("| offset", 0) != 0 &&
                   line.rfind("| ---", 0) != 0 && line.rfind("| machine", 0) != 0) {
            SECTION& section = sections[piece];
            (record.empty() ? section.rows : section.records[record])
                .push_back(Split(line.substr(1), '|'));
        }
    }
    return sections;
}

const SECTION& SectionOf(const std::string& heading) {
    static const std::map<std::string, SECTION> kSections = ReadSections();
    const auto found = kSections.find(heading);
    if (found == kSections.end() || found->second.rows.empty()) {
        throw std::runtime_error("no table under the heading " + heading);
    }
    return found->second;
}

uint32_t WidthOf(const std::string& type) {
    static const std::map<std::string, uint32_t> kWidths = {
        {"u8",   1},
        {"bool", 1},
        {"u16",  2},
        {"i16",  2},
        {"u32",  4},
        {"i32",  4},
        {"u64",  8},
        {"f32",  4},
        {"f64",  8}
    };
    const auto found = kWidths.find(type);
    return found == kWidths.end() ? 0 : found->second;
}

// Appends the rows of one table, at `base`, and returns its bytes.
uint32_t Expand(const SECTION& section, const std::vector<CELLS>& rows, const std::string& prefix,
                uint32_t base, std::vector<STATE_ROW>& out) {
    uint32_t at = 0;
    for (const CELLS& cells : rows) {
        if (cells.size() < 4 || cells[3].empty()) {
            throw std::runtime_error("a row of too few columns under " + prefix);
        }
        const std::string kTimes = " × ";
        const size_t times = cells[2].find(kTimes);
        const std::string type = cells[2].substr(0, times);
        const uint32_t count =
            times == std::string::npos ? 1 : Number(cells[2].substr(times + kTimes.size()));
        // A field that is written and not read back is in brackets.
        const bool bracketed = cells[3].front() == '(';
        const std::string name =
            prefix + (bracketed ? cells[3].substr(1, cells[3].size() - 2) : cells[3]);
        if (Number(cells[0]) != at) {
            throw std::runtime_error(name + " does not begin where the row before ends");
        }
        uint32_t bytes = WidthOf(type) * count;
        if (bytes != 0) {
            out.push_back({name, base + at, WidthOf(type), count, type == "bool"});
        } else {
            const auto record = section.records.find(type);
            if (record == section.records.end()) {
                throw std::runtime_error(name + " is of an unknown type, " + type);
            }
            for (uint32_t i = 0; i < count; ++i) {
                const std::string index =
                    times == std::string::npos ? "" : "[" + std::to_string(i) + "]";
                bytes +=
                    Expand(section, record->second, name + index + ".", base + at + bytes, out);
            }
        }
        if (Number(cells[1]) != bytes) {
            throw std::runtime_error(name + " has another number of bytes than its type");
        }
        at += bytes;
    }
    return at;
}

} // namespace

STATE_TABLE ReadStateTable(const std::string& piece) {
    const SECTION& section = SectionOf(piece);
    STATE_TABLE table;
    table.size = Expand(section, section.rows, "", 0, table.rows);
    if (table.size < kHeaderBytes || table.rows[0].name != "version" ||
        table.rows[1].name != "size") {
        throw std::runtime_error(piece + " does not begin with its version and its size");
    }
    table.version = static_cast<uint8_t>(Number(section.rows[0].at(4)));
    const std::string& told = section.rows[1].at(4);
    table.isOpen = told.ends_with(kAndMore);
    if (Number(told.substr(0, told.find(' '))) != table.size) {
        throw std::runtime_error(piece + " does not tell its own size");
    }
    table.rows.erase(table.rows.begin(), table.rows.begin() + 2);
    return table;
}

std::vector<std::string> ReadMachinePieces(const std::string& machine) {
    for (const CELLS& cells : SectionOf("Machines").rows) {
        if (cells.size() >= 2 && cells[0] == machine) {
            return Split(cells[1], ',');
        }
    }
    throw std::runtime_error("no machine " + machine);
}
