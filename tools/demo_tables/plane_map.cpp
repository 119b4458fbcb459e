#include "demo_tables/plane_map.h"

#include "demo_tables/table_text.h"

#include <algorithm>
#include <array>
#include <map>

namespace {

constexpr unsigned kColours = 16;
constexpr unsigned kMirrored = 0x0800;
constexpr unsigned kUpsideDown = 0x1000;
constexpr unsigned kMostCells = 0x07FF; // the bits of a map's word

using CELL = std::array<uint8_t, size_t{kCell} * kCell>;

CELL CellAt(const INDEXED_PICTURE& picture, unsigned column, unsigned line) {
    CELL cell{};
    for (unsigned i = 0; i < cell.size(); ++i) {
        cell[i] = picture.At(column * kCell + i % kCell, line * kCell + i / kCell);
    }
    return cell;
}

CELL Turned(const CELL& cell, unsigned turns) {
    CELL turned{};
    for (unsigned y = 0; y < kCell; ++y) {
        for (unsigned x = 0; x < kCell; ++x) {
            const unsigned fromX = (turns & kMirrored) != 0 ? kCell - 1 - x : x;
            const unsigned fromY = (turns & kUpsideDown) != 0 ? kCell - 1 - y : y;
            turned[size_t{y} * kCell + x] = cell[size_t{fromY} * kCell + fromX];
        }
    }
    return turned;
}

class CellStore {
public:
    // The map's word for a cell, which is kept unless it is there already.
    unsigned WordFor(const CELL& cell) {
        if (cell == CELL{}) {
            return 0;
        }
        for (const unsigned turns : {0U, kMirrored, kUpsideDown, kMirrored | kUpsideDown}) {
            const auto found = numbers.find(Turned(cell, turns));
            if (found != numbers.end()) {
                return found->second | turns;
            }
        }
        const auto number = static_cast<unsigned>(numbers.size() + 1);
        numbers[cell] = number;
        for (size_t i = 0; i < cell.size(); i += 2) {
            bytes.push_back(static_cast<uint8_t>(cell[i] << 4 | cell[i + 1]));
        }
        return number;
    }

    [[nodiscard]] size_t Count() const { return numbers.size(); }
    [[nodiscard]] const std::vector<uint8_t>& Bytes() const { return bytes; }

private:
    std::map<CELL, unsigned> numbers;
    std::vector<uint8_t> bytes; // four bits a pixel
};

} // namespace

bool ConvertPlane(const std::filesystem::path& file, PLANE_MAP& map, std::string& error) {
    INDEXED_PICTURE picture;
    if (!LoadIndexedPicture(file, picture, error) || !CheckColours(picture, kColours, error)) {
        return false;
    }
    CellStore cells;
    std::vector<uint8_t> words;
    for (unsigned line = 0; line < picture.height / kCell; ++line) {
        for (unsigned column = 0; column < picture.width / kCell; ++column) {
            const unsigned word = cells.WordFor(CellAt(picture, column, line));
            words.push_back(static_cast<uint8_t>(word >> 8));
            words.push_back(static_cast<uint8_t>(word));
        }
    }
    if (cells.Count() > kMostCells) {
        error = file.string() + ": " + std::to_string(cells.Count()) +
                " different cells, and a map can name 2047";
        return false;
    }
    const std::string name = file.stem().string();
    map.text = TextOf(
        {
            {name + "Tiles",    cells.Bytes()},
            {name + "TilesEnd", {}           },
            {name + "Map",      words        }
    },
        LANGUAGE::kAssembly);
    map.counts = name + "Cells = " + std::to_string(cells.Count()) + "\n";
    return true;
}
