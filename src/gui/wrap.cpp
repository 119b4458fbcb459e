#include "gui/wrap.h"

#include "gui/font.h"
#include "gui/text.h"

#include <algorithm>

namespace {

constexpr int64_t kUnit = 64; // advances are in 64ths

class Wrapper {
public:
    Wrapper(CGhostFont& usedFont, std::wstring_view wholeText, int32_t width)
        : font(usedFont)
        , text(wholeText)
        , room(std::max<int64_t>(width, 0) * kUnit) {}

    // The lines of text[start, end), which has no line feed.
    void Paragraph(size_t start, size_t end, std::vector<GUI_TEXT_LINE>& lines) {
        size_t at = start;
        do {
            const size_t stop = LineEnd(at, end);
            lines.push_back({at, stop - at, 0});
            at = stop;
            if (at < end && text[at] == L' ') {
                ++at; // the space that the line broke at
                if (at == end) {
                    break;
                }
            }
        } while (at < end);
    }

private:
    [[nodiscard]] size_t LineEnd(size_t start, size_t end) {
        int64_t sum = 0;
        size_t space = end; // the last one that the line may break at
        for (size_t i = start; i < end; ++i) {
            if (text[i] == L' ' && i > start) {
                space = i;
            }
            sum += font.Advance(text[i]);
            if (sum > room && text[i] != L' ') {
                return space != end ? space : std::max(i, start + 1);
            }
        }
        return end;
    }

    CGhostFont& font;
    std::wstring_view text;
    int64_t room;
};

} // namespace

GUI_TEXT_LAYOUT WrapText(CGhostFont* font, std::wstring_view text, int32_t width) {
    GUI_TEXT_LAYOUT layout;
    CGhostFont* const used = CGhostFontManager::Get().OrDefault(font);
    if (used == nullptr || text.empty()) {
        return layout;
    }
    layout.lineHeight = used->LineHeight();
    Wrapper wrapper(*used, text, width);
    for (size_t start = 0; start <= text.size();) {
        const size_t feed = std::min(text.find(L'\n', start), text.size());
        const size_t end = feed > start && text[feed - 1] == L'\r' ? feed - 1 : feed;
        wrapper.Paragraph(start, end, layout.lines);
        start = feed + 1;
    }
    for (GUI_TEXT_LINE& line : layout.lines) {
        // Spaces at a line's end are not seen.
        while (line.count > 0 && text[line.start + line.count - 1] == L' ') {
            --line.count;
        }
        line.width = MeasurePrefix(used, text.substr(line.start, line.count), line.count);
        layout.width = std::max(layout.width, line.width);
    }
    return layout;
}
