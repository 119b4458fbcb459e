#include "library/row_filter.h"

#include "base/text.h"

#include <algorithm>
#include <charconv>
#include <cwchar>
#include <optional>
#include <utility>

namespace {

constexpr int32_t kUnknownYear = 1900;
constexpr int32_t kLargestNumber = 99999999; // any year beyond this is as far away

constexpr std::pair<wchar_t, RegionBox> kRegionLetters[] = {
    {L'E', kRegionEurope},
    {L'J', kRegionJapan },
    {L'U', kRegionUsa   },
    {L'B', kRegionBrazil},
    {L'K', kRegionKorea },
};

struct YEARS {
    int32_t first;
    int32_t last;
};

// Decimal digits up to the first other character; 0 without any.
int32_t NumberIn(std::wstring_view text) {
    int32_t number = 0;
    for (const wchar_t c : text) {
        if (c < L'0' || c > L'9') {
            break;
        }
        number = std::min(number * 10 + (c - L'0'), kLargestNumber);
    }
    return number;
}

std::optional<YEARS> YearsIn(std::wstring_view text) {
    constexpr size_t kLastYearCharacters = 5;
    if (text.empty()) {
        return std::nullopt;
    }
    const size_t dash = text.find(L'-');
    if (dash == std::wstring_view::npos) {
        const int32_t year = NumberIn(text);
        return YEARS{year, year};
    }
    return YEARS{NumberIn(text.substr(0, dash)),
                 NumberIn(text.substr(dash + 1, kLastYearCharacters))};
}

uint8_t RegionsOf(std::wstring_view letters) {
    uint8_t mask = 0;
    for (const auto& [letter, box] : kRegionLetters) {
        if (letters.find(letter) != std::wstring_view::npos) {
            mask = static_cast<uint8_t>(mask | box);
        }
    }
    return mask != 0 ? mask : static_cast<uint8_t>(kRegionOther);
}

// `lowered` is in lower case already.
bool BeginsWith(std::wstring_view title, std::wstring_view lowered) {
    return std::equal(lowered.begin(), lowered.end(), title.begin(),
                      [](wchar_t a, wchar_t b) { return a == LowerAscii(b); });
}

bool Contains(std::wstring_view title, std::wstring_view lowered) {
    if (lowered.empty()) {
        return true;
    }
    const wchar_t first = lowered.front();
    for (; title.size() >= lowered.size(); title.remove_prefix(1)) {
        if (LowerAscii(title.front()) == first && BeginsWith(title, lowered)) {
            return true;
        }
    }
    return false;
}

class Filter {
public:
    explicit Filter(const ROW_CHOICES& from)
        : choices(from)
        , years(YearsIn(from.year))
        , name(LowerAscii(std::wstring_view(from.name))) {}

    [[nodiscard]] bool Passes(const GameListRow& row) const {
        return (choices.group != RowGroup::kByGame || row.nameIndex == 0) &&
               (!years || (row.year >= years->first && row.year <= years->last)) &&
               PassesRegion(row) && Contains(row.title, name) &&
               (choices.playTypes == kEveryPlayType || (choices.playTypes & row.playTypes) != 0);
    }

private:
    [[nodiscard]] bool PassesRegion(const GameListRow& row) const {
        const uint8_t regions = RegionsOf(row.regions);
        return choices.regionMode == RegionMode::kOnlyReleasedIn ? regions == choices.regions
                                                                 : (regions & choices.regions) != 0;
    }

    const ROW_CHOICES& choices;
    std::optional<YEARS> years;
    std::wstring name;
};

} // namespace

ROW_LINE LineOf(const GameListRow& row) {
    ROW_LINE line{};
    line.title = row.title;
    line.statusColour = row.statusColour;
    std::reverse_copy(row.flagImages.begin(), row.flagImages.end(), line.images.begin());
    if (row.year == kUnknownYear) {
        std::wcscpy(line.year.data(), L"----");
    } else {
        std::array<char, kYearCharacters> digits{};
        std::to_chars(digits.data(), digits.data() + digits.size(), row.year);
        std::ranges::copy(digits, line.year.begin());
    }
    line.path = &row.path;
    line.nameIndex = row.nameIndex;
    line.contentKey = row.contentKey;
    line.row = &row;
    return line;
}

std::vector<const GameListRow*> FilterRows(std::span<const GameListRow> rows,
                                           const ROW_CHOICES& choices) {
    const Filter filter(choices);
    std::vector<const GameListRow*> passed;
    passed.reserve(rows.size());
    for (const GameListRow& row : rows) {
        if (filter.Passes(row)) {
            passed.push_back(&row);
        }
    }
    return passed;
}

std::vector<ROW_LINE> ApplyFilters(std::span<const GameListRow> rows, const ROW_CHOICES& choices) {
    const std::vector<const GameListRow*> passed = FilterRows(rows, choices);
    std::vector<ROW_LINE> lines;
    lines.reserve(passed.size());
    for (const GameListRow* const row : passed) {
        lines.push_back(LineOf(*row));
    }
    return lines;
}

std::wstring ShowingText(size_t lines) {
    return L"Showing " + std::to_wstring(lines) + L" games";
}
