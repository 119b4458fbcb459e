#include "demo_tables/pixel_formats.h"

namespace {

class Drawing {
public:
    Drawing(const INDEXED_PICTURE& ofPicture, const CELLS& ofCells, const PIXEL_RULES& byRules)
        : picture(ofPicture)
        , cells(ofCells)
        , rules(byRules) {}

    [[nodiscard]] std::vector<uint8_t> Letters() const;
    [[nodiscard]] std::vector<uint8_t> Packed() const;
    [[nodiscard]] std::vector<uint8_t> CellsByLine(unsigned planes, unsigned times) const;
    [[nodiscard]] std::vector<uint8_t> CellsByColumn(unsigned planes) const;

private:
    // Counted from the drawing's own corner.
    [[nodiscard]] unsigned ColourAt(unsigned x, unsigned y) const {
        return picture.At(cells.column * kCell + x, cells.line * kCell + y) % rules.colours;
    }
    void AppendCell(std::vector<uint8_t>& bytes, unsigned column, unsigned line,
                    unsigned planes) const;

    const INDEXED_PICTURE& picture;
    const CELLS& cells;
    const PIXEL_RULES& rules;
};

std::vector<uint8_t> Drawing::Letters() const {
    std::vector<uint8_t> bytes;
    for (unsigned y = 0; y < cells.lines * kCell; ++y) {
        for (unsigned x = 0; x < cells.columns * kCell; ++x) {
            bytes.push_back(static_cast<uint8_t>(rules.letters[ColourAt(x, y)]));
        }
    }
    return bytes;
}

std::vector<uint8_t> Drawing::Packed() const {
    std::vector<uint8_t> bytes = {0, static_cast<uint8_t>(cells.columns), 0,
                                  static_cast<uint8_t>(cells.lines)};
    for (unsigned y = 0; y < cells.lines * kCell; ++y) {
        for (unsigned x = 0; x < cells.columns * kCell; x += 2) {
            bytes.push_back(static_cast<uint8_t>(ColourAt(x, y) << 4 | ColourAt(x + 1, y)));
        }
    }
    return bytes;
}

void Drawing::AppendCell(std::vector<uint8_t>& bytes, unsigned column, unsigned line,
                         unsigned planes) const {
    for (unsigned plane = 0; plane < planes; ++plane) {
        for (unsigned y = 0; y < kCell; ++y) {
            unsigned bits = 0;
            for (unsigned x = 0; x < kCell; ++x) {
                bits = bits << 1 | (ColourAt(column * kCell + x, line * kCell + y) >> plane & 1U);
            }
            bytes.push_back(static_cast<uint8_t>(bits));
        }
    }
}

std::vector<uint8_t> Drawing::CellsByLine(unsigned planes, unsigned times) const {
    std::vector<uint8_t> bytes;
    for (unsigned line = 0; line < cells.lines; ++line) {
        for (unsigned column = 0; column < cells.columns; ++column) {
            for (unsigned time = 0; time < times; ++time) {
                AppendCell(bytes, column, line, planes);
            }
        }
    }
    return bytes;
}

std::vector<uint8_t> Drawing::CellsByColumn(unsigned planes) const {
    std::vector<uint8_t> bytes;
    for (unsigned column = 0; column < cells.columns; ++column) {
        for (unsigned line = 0; line < cells.lines; ++line) {
            AppendCell(bytes, column, line, planes);
        }
    }
    return bytes;
}

} // namespace

std::vector<uint8_t> BytesOf(const INDEXED_PICTURE& picture, const CELLS& cells,
                             const PIXEL_RULES& rules) {
    const Drawing drawing(picture, cells, rules);
    switch (rules.format) {
    case PIXEL_FORMAT::kLetters: return drawing.Letters();
    case PIXEL_FORMAT::kBits: return drawing.CellsByLine(1, rules.times);
    case PIXEL_FORMAT::kNes: return drawing.CellsByLine(2, 1);
    case PIXEL_FORMAT::kNesTall: return drawing.CellsByColumn(2);
    case PIXEL_FORMAT::kMegaDrive: return drawing.Packed();
    }
    return {};
}
