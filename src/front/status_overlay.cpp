#include "front/status_overlay.h"

#include "front/notices.h"
#include "host/session.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int kTextScale = 2; // screen pixels of a dot of text, at the height below
constexpr int kVirtualHeight = 720;
constexpr int kLeft = 20;
constexpr int kTop = 43;
constexpr int kLineStep = 20;
constexpr uint32_t kStatusColour = 0xFFFFE080;
constexpr uint32_t kNoticeColour = 0xFFFFFFFF;

int Place(const DRAW_TARGET& target, int at) {
    return at * static_cast<int>(target.height) / kVirtualHeight;
}

int TextScale(const DRAW_TARGET& target) {
    return std::max(1, Place(target, kTextScale));
}

size_t LettersAcross(const DRAW_TARGET& target) {
    const int width = static_cast<int>(target.width) - Place(target, 2 * kLeft);
    return static_cast<size_t>(std::max(width / (kTextCellWidth * TextScale(target)), 8));
}

} // namespace

bool StatusOverlay::Start() {
    text = std::make_unique<OverlayText>();
    return text->Init();
}

void StatusOverlay::End() {
    text.reset();
}

bool StatusOverlay::Update(const DRAW_TARGET& target, bool statistics, const std::string& frameRate,
                           int64_t now) {
    statusLines.clear();
    if (statistics) {
        statusLines = {frameRate, EmuFormatStats()};
    }
    std::string line = ProgramNotices().Shown(now, LettersAcross(target));
    const bool news = line != notice;
    notice = std::move(line);
    return news;
}

void StatusOverlay::Draw(const DRAW_TARGET& target) const {
    if (text == nullptr) {
        return;
    }
    const int scale = TextScale(target);
    const int left = Place(target, kLeft);
    for (size_t line = 0; line < statusLines.size(); ++line) {
        const int y = Place(target, kTop + kLineStep * static_cast<int>(line));
        text->Draw(statusLines[line], left, y, scale, kStatusColour);
    }
    if (!notice.empty()) {
        const int y = static_cast<int>(target.height) - Place(target, kTop);
        text->Draw(notice, left, y, scale, kNoticeColour);
    }
}
