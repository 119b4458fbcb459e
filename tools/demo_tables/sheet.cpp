#include "demo_tables/sheet.h"

#include "base/files.h"

#include "demo_tables/pixel_formats.h"
#include "demo_tables/source_lines.h"

#include <algorithm>
#include <cctype>

namespace {

constexpr int kMostCells = 512; // each way
constexpr int kMostBytes = 65536;
constexpr int kMostPalettes = 8;

class Sheet {
public:
    explicit Sheet(std::filesystem::path path)
        : file(std::move(path)) {}

    // Both set `error`.
    [[nodiscard]] bool Read(const std::vector<SOURCE_LINE>& lines);
    [[nodiscard]] bool CheckFreePixels();

    [[nodiscard]] const std::filesystem::path& PictureFile() const { return picture.file; }
    [[nodiscard]] std::string Text() const { return TextOf(tables, language); }

    std::string error;

private:
    [[nodiscard]] bool Refuse(const std::string& message);
    [[nodiscard]] bool ReadLine();
    [[nodiscard]] bool ReadPicture();
    [[nodiscard]] bool ReadFormat();
    [[nodiscard]] bool ReadPalettes();
    [[nodiscard]] bool ReadLanguage();
    [[nodiscard]] bool ReadDrawing();
    [[nodiscard]] bool ReadFill();
    [[nodiscard]] bool CheckName(const std::string& name);
    [[nodiscard]] bool Begin();

    std::filesystem::path file;
    int line = 0;
    std::vector<std::string> words;
    INDEXED_PICTURE picture;
    PIXEL_RULES rules;
    LANGUAGE language = LANGUAGE::kAssembly;
    std::vector<TABLE> tables;
    std::vector<CELLS> drawn;
};

bool Sheet::Refuse(const std::string& message) {
    error = Fault(file, line, message);
    return false;
}

bool Sheet::Read(const std::vector<SOURCE_LINE>& lines) {
    for (const SOURCE_LINE& each : lines) {
        line = each.number;
        words = each.words;
        if (!ReadLine()) {
            return false;
        }
    }
    return !drawn.empty() || Refuse("the sheet ends without a drawing");
}

bool Sheet::ReadLine() {
    const std::string& word = words[0];
    if (word == "picture") {
        return ReadPicture();
    }
    if (word == "format") {
        return ReadFormat();
    }
    if (word == "palettes") {
        return ReadPalettes();
    }
    if (word == "language") {
        return ReadLanguage();
    }
    if (word == "drawing") {
        return ReadDrawing();
    }
    if (word == "fill") {
        return ReadFill();
    }
    return Refuse("unknown word '" + word + "'");
}

bool Sheet::ReadPicture() {
    if (words.size() != 2 || !picture.pixels.empty()) {
        return Refuse("one picture is wanted, and its file alone");
    }
    return LoadIndexedPicture(file.parent_path() / words[1], picture, error);
}

bool Sheet::ReadFormat() {
    const std::string name = words.size() > 1 ? words[1] : "";
    if (name == "letters" && words.size() == 3) {
        rules.format = PIXEL_FORMAT::kLetters;
        rules.letters = words[2];
        rules.colours = static_cast<unsigned>(rules.letters.size());
        return true;
    }
    if (name == "bits" && (words.size() == 2 || (words.size() == 3 && words[2] == "twice"))) {
        rules.format = PIXEL_FORMAT::kBits;
        rules.colours = 2;
        rules.times = words.size() == 3 ? 2 : 1;
        return true;
    }
    if ((name == "nes" || name == "nes-tall") && words.size() == 2) {
        rules.format = name == "nes" ? PIXEL_FORMAT::kNes : PIXEL_FORMAT::kNesTall;
        rules.colours = 4;
        return true;
    }
    if (name == "mega-drive" && words.size() == 2) {
        rules.format = PIXEL_FORMAT::kMegaDrive;
        rules.colours = 16;
        return true;
    }
    return Refuse("the formats are: letters LETTERS, bits, bits twice, nes, nes-tall, mega-drive");
}

bool Sheet::ReadPalettes() {
    const auto number = words.size() == 2 ? NumberOf(words[1], 1, kMostPalettes) : std::nullopt;
    if (!number) {
        return Refuse("palettes are 1 to 8");
    }
    rules.palettes = static_cast<unsigned>(*number);
    return true;
}

bool Sheet::ReadLanguage() {
    if (words.size() != 2 || (words[1] != "c" && words[1] != "assembly")) {
        return Refuse("the languages are: assembly, c");
    }
    language = words[1] == "c" ? LANGUAGE::kC : LANGUAGE::kAssembly;
    return true;
}

// What must be known before the first drawing.
bool Sheet::Begin() {
    if (!drawn.empty()) {
        return true;
    }
    if (picture.pixels.empty() || rules.colours == 0) {
        return Refuse("picture and format come before the first drawing");
    }
    return CheckColours(picture, rules.colours * rules.palettes, error);
}

bool Sheet::CheckName(const std::string& name) {
    const bool letters = std::all_of(
        name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) != 0 || c == '_'; });
    if (!letters || std::isdigit(static_cast<unsigned char>(name[0])) != 0) {
        return Refuse("'" + name + "' is no name for a table");
    }
    const auto isThat = [&](const TABLE& table) { return table.name == name; };
    return std::none_of(tables.begin(), tables.end(), isThat) ||
           Refuse("a second drawing '" + name + "'");
}

bool Sheet::ReadDrawing() {
    if (!Begin()) {
        return false;
    }
    if (words.size() != 6) {
        return Refuse("a drawing has a name, then column, line, columns and lines in cells");
    }
    const bool named = words[1] != "-";
    if (named && !CheckName(words[1])) {
        return false;
    }
    if (!named && language == LANGUAGE::kC) {
        return Refuse("in C every drawing has a name");
    }
    const auto column = NumberOf(words[2], 0, kMostCells);
    const auto row = NumberOf(words[3], 0, kMostCells);
    const auto columns = NumberOf(words[4], 1, kMostCells);
    const auto rows = NumberOf(words[5], 1, kMostCells);
    if (!column || !row || !columns || !rows) {
        return Refuse("column, line, columns and lines are numbers of cells");
    }
    const CELLS cells{static_cast<unsigned>(*column), static_cast<unsigned>(*row),
                      static_cast<unsigned>(*columns), static_cast<unsigned>(*rows)};
    if ((cells.column + cells.columns) * kCell > picture.width ||
        (cells.line + cells.lines) * kCell > picture.height) {
        return Refuse("the drawing leaves the picture, which has " +
                      std::to_string(picture.width / kCell) + " by " +
                      std::to_string(picture.height / kCell) + " cells");
    }
    TABLE table{named ? words[1] : "", BytesOf(picture, cells, rules)};
    if (language == LANGUAGE::kC && rules.format == PIXEL_FORMAT::kLetters) {
        table.bytes.push_back(0); // the end of a string
    }
    tables.push_back(std::move(table));
    drawn.push_back(cells);
    return true;
}

// Pads with zeros to a multiple of the given bytes.
bool Sheet::ReadFill() {
    const auto multiple = words.size() == 2 ? NumberOf(words[1], 1, kMostBytes) : std::nullopt;
    if (!multiple || language == LANGUAGE::kC) {
        return Refuse("fill has a number of bytes, and isn't for C");
    }
    size_t size = 0;
    for (const TABLE& table : tables) {
        size += table.bytes.size();
    }
    const auto step = static_cast<size_t>(*multiple);
    tables.push_back({"", std::vector<uint8_t>((step - size % step) % step)});
    return true;
}

// A pixel outside every drawing would be lost silently.
bool Sheet::CheckFreePixels() {
    for (unsigned y = 0; y < picture.height; ++y) {
        for (unsigned x = 0; x < picture.width; ++x) {
            const auto holds = [&](const CELLS& cells) {
                return x / kCell - cells.column < cells.columns &&
                       y / kCell - cells.line < cells.lines;
            };
            if (picture.At(x, y) != 0 && std::none_of(drawn.begin(), drawn.end(), holds)) {
                error = PixelFault(picture, x, y,
                                   "is in no drawing of " + file.string() + ", but isn't colour 0");
                return false;
            }
        }
    }
    return true;
}

} // namespace

bool ConvertSheet(const std::filesystem::path& file, SHEET_RESULT& result, std::string& error) {
    std::vector<uint8_t> bytes;
    if (!ReadFile(file, bytes, error)) {
        return false;
    }
    Sheet sheet(file);
    if (!sheet.Read(SplitLines(std::string(bytes.begin(), bytes.end()))) ||
        !sheet.CheckFreePixels()) {
        error = sheet.error;
        return false;
    }
    result = {sheet.Text(), sheet.PictureFile()};
    return true;
}
